#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace txt {

class Txt_token;

// Names a kind of association: 16 bytes in GUID layout, ordered as bytes.
using Txt_association_kind = std::array<std::uint8_t, 16>;

// What a caller attached to a token.
struct Txt_association {
    Txt_association_kind kind;
    std::shared_ptr<void> object; // may be null: the kind alone says something then

    bool operator==(const Txt_association&) const = default;
};

// The associations of all tokens of a view, one of each kind to a token. Few tokens have any, so a
// map beside the tokens takes less memory than a member of each.
class Associations {
public:
    // False when the token has one of this kind already.
    bool add(const Txt_token& token, const Txt_association& association) {
        return objects_.try_emplace({&token, association.kind}, association.object).second;
    }
    // False when there is none.
    bool remove(const Txt_token& token, const Txt_association_kind& kind) {
        return objects_.erase({&token, kind}) != 0;
    }
    // Removes all that the token has; returns how many there were.
    std::size_t remove_all(const Txt_token& token);
    void clear() { objects_.clear(); }

    // All associations of the token, ordered by kind.
    [[nodiscard]] std::vector<Txt_association> find(const Txt_token& token) const;
    [[nodiscard]] bool has(const Txt_token& token, const Txt_association_kind& kind) const {
        return objects_.contains({&token, kind});
    }

private:
    // Ordered by the token first, so that all of a token's are next to each other.
    using Key = std::pair<const Txt_token*, Txt_association_kind>;

    std::map<Key, std::shared_ptr<void>> objects_;
};

} // namespace txt

#pragma GCC visibility pop
