#include "txt/txt_associations.hpp"

namespace txt {

namespace {

constexpr Txt_association_kind FIRST_KIND{}; // no kind comes before it in the order of bytes

} // namespace

// A token's associations are neighbours in the map's order, so no others are looked at.
std::size_t Associations::remove_all(const Txt_token& token) {
    std::size_t count = 0;
    for (auto at = objects_.lower_bound({&token, FIRST_KIND});
         at != objects_.end() && at->first.first == &token; ++count) {
        at = objects_.erase(at);
    }
    return count;
}

// Copies: what is found stays right when associations come and go.
std::vector<Txt_association> Associations::find(const Txt_token& token) const {
    std::vector<Txt_association> found;
    for (auto at = objects_.lower_bound({&token, FIRST_KIND});
         at != objects_.end() && at->first.first == &token; ++at) {
        found.push_back({at->first.second, at->second});
    }
    return found;
}

} // namespace txt
