#pragma once

// What was found out about records of a module, by their numbers: as long as the module has records,
// and as quick as an array.

#include <cstdint>
#include <vector>

namespace orvo {

template <typename Note> class RecNotes {
  public:
    /// The note of a record; null when there is none. The pointer holds until the next set().
    [[nodiscard]] const Note* find(uint32_t nr) const {
        return nr < notes_.size() && notes_[nr].known ? &notes_[nr].note : nullptr;
    }
    void set(uint32_t nr, const Note& note) {
        if (nr >= notes_.size()) notes_.resize(nr + nr / 2 + size_t{1});
        notes_[nr] = {note, true};
    }

  private:
    struct Place {
        Note note;
        bool known = false;
    };
    std::vector<Place> notes_;
};

} // namespace orvo
