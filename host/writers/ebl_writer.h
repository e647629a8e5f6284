#pragma once

#include "writers/bst_record_writer.h"

namespace vistel {

/// What EblFormat reads: a stream of records with a tag in front of all that came at the same time.
class EblWriter final : public WholeMessageWriter {
  public:
    RecordTime::Origin origin_written(const RecordTime& time) const override;
    const char* put(const Record& record, std::string& out) override;

  private:
    BstRecordWriter records_;
    RecordTime time_;  // of the last tag
    bool begun_ = false;
};

}  // namespace vistel
