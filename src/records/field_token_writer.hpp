#pragma once

#include "scl/scl_ostream.hpp"
#include "txtdfc/txtdfc_format_codec.hpp"
#include "txtdfc/txtdfc_token_pool.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tla {

// Turns formatted values into token values: the CRC-64 of each word, number, punctuation mark and
// symbol of the text. The codec, its pool of tokens and the list of values are kept from one value
// to the next, so that a value costs no allocation.
class Field_token_writer {
public:
    Field_token_writer();

    // Replaces `values` by the value's token values in text order; false when the value holds no
    // text. A failure to attach is left in the status, which is cleared first. A value of more
    // tokens than a pool holds throws std::runtime_error.
    [[nodiscard]] bool collect(std::u16string_view value, std::vector<std::uint64_t>& values,
                               scl::Scl_status& status);

    // Writes the field as a record holds it: the token count as a big-endian u16, which wraps at
    // 65,536, then every token value as a big-endian u64. Nothing after a failure to attach.
    void write(std::u16string_view value, scl::Scl_ostream& out, scl::Scl_status& status);

private:
    txtdfc::Txtdfc_token_pool pool_;
    txtdfc::Txtdfc_format_codec codec_; // its view's tokens live in the pool
    dff::Dff_text_facet& text_facet_;   // the codec's
    std::vector<std::uint64_t> values_;
};

} // namespace tla
