#include "output/value_text.h"

#include <cmath>

namespace vistel {

bool put_number_of(Sink& out, const FieldView& field) {
    if (!field.available) return false;
    const auto& v = field.value.value;
    switch (field.value.type) {
        case CV_FLOAT:
        case CV_FLOAT_PLAIN:
            if (!std::isfinite(v.f32)) return false;
            out.put_number(v.f32);
            return true;
        case CV_DOUBLE:
            if (!std::isfinite(v.f64)) return false;
            out.put_number(v.f64);
            return true;
        case CV_U8: out.put_number(std::uint64_t{v.u8}); return true;
        case CV_U16: out.put_number(std::uint64_t{v.u16}); return true;
        case CV_U32:
        case CV_TIME_OF_DAY: out.put_number(std::uint64_t{v.u32}); return true;
        case CV_U64: out.put_number(v.u64); return true;
        case CV_I8: out.put_number(std::int64_t{v.i8}); return true;
        case CV_I16: out.put_number(std::int64_t{v.i16}); return true;
        case CV_I32: out.put_number(std::int64_t{v.i32}); return true;
        case CV_I64: out.put_number(v.i64); return true;
        default: return false;
    }
}

}  // namespace vistel
