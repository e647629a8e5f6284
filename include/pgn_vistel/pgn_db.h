#pragma once

/// @file
/// The database of PGNs: text of fields, values and units.

#include "pgn_vistel/export.h"
#include "pgn_vistel/n2k_msg.h"

namespace pgn_vistel {
struct SelectionAccess;
namespace core {
class UnitSelection;
}
}  // namespace pgn_vistel

/// The PGN database: decodes and prints fields, PGN names, values and units, and keeps the user's choice of
/// units. `qv_n2k_pgn_db` is the instance used wherever none is given.
///
/// Text goes to the caller's buffers. Sizes count characters including the terminator; at most size - 1
/// characters are written and the text is always terminated. Printers without a size argument assume 256
/// characters (`print_val_unit*`: 513). Results are the number of characters written unless said otherwise.
///
/// A unit argument is a `UnitId` (core/ids.h). Nothing throws. Several operations use static text areas, so
/// one thread at a time may decode or print; lookups and unit selection are safe beside each other only on
/// that thread too.
class PGN_VISTEL_API QV_N2K_PGN_DB_c {
  public:
    /// Starts from the default units. The selection lives on the heap for the life of the process: there is
    /// deliberately no destructor, because copies share it. Without memory for it the object works with the
    /// default units and `SelectUnit` gives -1.
    QV_N2K_PGN_DB_c();

    /// Shares the other object's unit selection from here on.
    QV_N2K_PGN_DB_c(const QV_N2K_PGN_DB_c&) = default;
    /// Shares the other object's unit selection from here on.
    QV_N2K_PGN_DB_c& operator=(const QV_N2K_PGN_DB_c&);

    // ---- catalogue ----

    /// Physical quantity of a data dictionary entry: 0 .. 64, 65 for none, -1 for an unknown number.
    static int get_DispDataType(int dd);

    /// The same, but where another field says what this one carries (dictionary entries 10057 and 10059) the
    /// format number is read from the payload: at `raw`, or in the two bytes before it.
    static int get_DispDataTypeX(int dd, const unsigned char* raw);

    /// Completes a field's own size (in `*bytes` and `*bits`, both 0 when it has none) from its dictionary
    /// entry `dd` (a `DDDef*`, formats.h, or null). Nothing happens where `bytes` or `bits` is null.
    static void get_bytes_bits(unsigned long pgn, void* dd, int* bytes, int* bits);

    /// Number of the field that starts at a byte and bit (0..7) of the payload, or -1. Fields whose size only
    /// their value tells advance nothing here.
    int get_field_id(unsigned long pgn, unsigned short byte_position, unsigned char bit_position);

    /// Enumeration texts of a dictionary entry (a `DDstrings*`), or null.
    static void* find_DDstrings(unsigned int dd);

    /// @{
    /// Display name of a catalogued PGN. -1 for a null buffer, size 0 or an unknown PGN.
    static int print_pgn_name(wchar_t* buf, int size, unsigned long pgn);
    static int print_pgn_name(char* buf, int size, unsigned long pgn);
    /// @}

    // ---- fields as text ----

    /// "Label: ". Inside a repeating group (`repeat_index` from 1) a label with "First" is numbered instead.
    static int print_field_name(wchar_t* buf, int size, int dd, const wchar_t* label, int repeat_index,
                                unsigned long, int);

    /// The value part of a field: enumeration text, special form or number, then the unit.
    /// `value` is a `ConvValue*`, or null for the unit alone. `flags` bit value 2: numbers without their
    /// hexadecimal form. `unit` above 139 or negative: the selected one.
    int print_field_data(wchar_t* buf, int size, int dd, int disp_data_type, void* value, int unit,
                         int print_unit_flag, unsigned long flags, unsigned long pgn, int field);

    /// "Data: 01 02 ..": bytes that no definition covers; `data` null stands for none. `label_length` may be
    /// null, else it receives the characters of the label.
    static int print_field_data_unknown(wchar_t* buf, int size, const unsigned char* data, int length,
                                        int with_label, int* label_length);

    /// One field of a message as "Label: value unit".
    ///
    /// `dd` is the field's `DDDef*`; `bytes` and `bits` its normalised size. `byte_position` and
    /// `bit_position` (either may be null) are read and moved behind the field. `source_byte` receives
    /// payload byte 2 for the pressure source field of 130314 (may be null). `repeat_index` is 0 outside
    /// repeating groups. `label_length` and `value` (a `ConvValue*`) may be null.
    ///
    /// A field that cannot be decoded shows the whole payload as hexadecimal and moves the position to the
    /// message's end. A number that the message cuts off is not available; a text shows what is there.
    int get_field_str(wchar_t* buf, int size, N2KMsg* msg, int field, void* dd, const wchar_t* label,
                      int bytes, int bits, int* byte_position, int* bit_position, unsigned char* source_byte,
                      int repeat_index, int print_unit_flag, unsigned long flags, int* label_length,
                      void* value, int unit);

    /// The same, with label ("Label: ") and value in buffers of their own, of at least 1024 characters each.
    int get_field_str(wchar_t* label_out, wchar_t* value_out, N2KMsg* msg, int field, void* dd,
                      const wchar_t* label, int bytes, int bits, int* byte_position, int* bit_position,
                      unsigned char* source_byte, int repeat_index, int print_unit_flag, unsigned long flags,
                      void* value, int unit);

    // ---- data formats ----

    /// Physical quantity of a data format, or -1.
    static int DF_to_DispDataType(unsigned short df);

    /// A data format that carries the quantity, or 65535.
    static unsigned short DispDataType_to_DF(int disp_data_type);

    /// The format's conversion as an untyped pointer (`ConvFunction`, formats.h), or null.
    static void* DF_to_conv_DF(unsigned short df);

    /// Converts the field at `raw` into the `ConvValue` at `out`. At least 1 on success, -1 for a null
    /// argument, a unit of 140 or more or a value that is not available, -2 for a format without conversion.
    /// A short or medium text that says to take no byte gives 0 and the last good text of its format.
    ///
    /// `raw` must hold what the format reads: bit fields 8 bytes, fixed texts up to a zero, a 0xFF or 1785
    /// bytes, hex dumps 84; other texts say their own length, and the format of a 60009 stands in the two
    /// bytes before it.
    static int conv_DF(unsigned short df, void* out, const void* raw, int unit);

    // ---- units ----

    /// Chooses the unit (0..139) for a quantity (0..64). 0, or -1 when either is out of range.
    int SelectUnit(int disp_data_type, int unit);

    /// The chosen unit, or -1 for a quantity outside 0..64.
    int GetSelectUnit(int disp_data_type);

    /// Units that a quantity offers, default first: at most `max` are stored, all are counted. -1 for a bad
    /// quantity or null `units`.
    static int GetAvailableUnit(int disp_data_type, int* units, int max);

    /// @{
    /// A unit's name. 0 for a null buffer, size 0 or an unknown unit. The last argument is ignored.
    static int print_unit(char* buf, int size, int unit, int);
    static int print_unit(wchar_t* buf, int size, int unit, int);
    /// @}

    /// @{
    /// Name of the unit, value, or both: of a data format or (`_dt`) of a quantity's format. `raw` as for
    /// `conv_DF`. A negative unit asks for the selected one; -1 is the result of every failure, a value that
    /// is not available and a text that says to take no byte included.
    int print_unit(wchar_t* buf, unsigned short df, int unit);
    int print_unit_dt(wchar_t* buf, int disp_data_type, int unit);
    int print_val(wchar_t* buf, unsigned short df, const void* raw, int unit);
    int print_val_dt(wchar_t* buf, int disp_data_type, const void* raw, int unit);
    int print_val_unit(wchar_t* buf, unsigned short df, const void* raw, int unit);
    int print_val_unit_dt(wchar_t* buf, int disp_data_type, const void* raw, int unit);
    /// @}

  private:
    friend struct pgn_vistel::SelectionAccess;
    pgn_vistel::core::UnitSelection* sel_unit_;
};

/// The instance that is used wherever none is given.
PGN_VISTEL_API extern QV_N2K_PGN_DB_c qv_n2k_pgn_db;

/// Number of quantities that a user can choose a unit for: 65.
PGN_VISTEL_API unsigned short GetDispDataType_Num();

/// Number of units: 140.
PGN_VISTEL_API unsigned short GetUnitDataType_Num();
