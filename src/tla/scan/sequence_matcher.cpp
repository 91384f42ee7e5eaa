#include "tla/scan/sequence_matcher.hpp"

// What a sequence matcher does once in a while; what it does for each token is in its header.
namespace tla {

// The followers of other readings have something to forget only where readings differed.
void Sequence_matcher::start() {
    open_.clear();
    for (Long_follower& follower : followers_) {
        if (readings_differ_ || &follower == &followers_.front()) follower.start();
    }
    readings_differ_ = false;
    is_following_ = false;
}

// Both lists are in the order of the text.
std::optional<Text_place> Sequence_matcher::oldest() const {
    std::optional<Text_place> oldest;
    if (!open_.empty()) oldest = open_.front().first;
    if (!is_following_) return oldest;
    for (const Long_follower& follower : followers_) {
        const auto place = follower.oldest();
        if (place && (!oldest || place->byte < oldest->byte)) oldest = place;
    }
    return oldest;
}

// What they have in common was followed once; that is copied at most once for all that follows
// without a break, and so costs no more than reading it.
void Sequence_matcher::split_readings() {
    if (readings_differ_) return;
    readings_differ_ = true;
    followers_[1] = followers_[0];
    followers_[2] = followers_[0];
}

// Asked of each chunk, so it is worked out once.
void Sequence_matcher::note_followers() {
    is_following_ =
        !followers_[0].is_idle() || !followers_[1].is_idle() || !followers_[2].is_idle();
}

// From here on it is no longer extended word by word.
void Sequence_matcher::follow(const Beginning& beginning, const Long_values& values) {
    if (values.empty()) return;
    for (std::size_t i = 0; i < followers_.size(); ++i) {
        if (follows(i, beginning.readings)) {
            followers_[i].begin(beginning.first, beginning.line, values);
        }
    }
}

} // namespace tla
