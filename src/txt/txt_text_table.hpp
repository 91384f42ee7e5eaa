#pragma once

#include "txt/txt_text_store.hpp"

#include <string_view>
#include <unordered_set>

namespace txt {

// Holds each text once, whoever asks for it. Views that are given the same table share their texts;
// it must outlive them.
class Txt_text_table {
public:
    // The kept text equal to `text`, which is copied if it is new. Zero-terminated; it stands as
    // long as the table does.
    [[nodiscard]] std::u16string_view insert(std::u16string_view text);

    // The kept text equal to `text`; its data is null when there is none.
    [[nodiscard]] std::u16string_view lookup(std::u16string_view text) const;

private:
    Txt_text_store store_;
    std::unordered_set<std::u16string_view> texts_;
};

} // namespace txt
