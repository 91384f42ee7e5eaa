#pragma once

#include "scl/io/scl_buffer.hpp"

#include <string_view>

namespace tla {

// Writes the records of an old data set file as a file of the latest version, in the order in which
// they stand in the old one, with its fields and key fields; empty key fields are carried over. A
// file of the latest version is left alone, and nothing is written.
//
// Codes are those of a connector's operations but lookups, those of making the scratch file, of
// processing a record and of the generator; TLA_STATUS_FIELD_LIST for two fields of one name,
// TLA_STATUS_NO_TEXT with the field's name for a record that stores no text, TLA_STATUS_NO_DATA_SET
// with the file's name for records that are together longer than their file, and for far more keys
// than its size warrants; the warning TLA_STATUS_COUNT_WRAPPED for records with a value of more
// than 65,535 tokens, by their numbers in the old file; the warning TLA_STATUS_RECORDS_LOST when
// the new file has fewer records than the old one's header claims. Throws std::runtime_error for a
// text of more than 15,000,000 tokens.
void upgrade_data_set(std::string_view input_path, scl::Scl_buffer& output,
                      scl::Scl_status& status);

} // namespace tla
