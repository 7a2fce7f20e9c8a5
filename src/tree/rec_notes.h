#pragma once

// What was found out about records of a module, by their numbers: as long as the module has
// records, and as quick as an array.

#include <cstdint>
#include <vector>

#include "tree/orvomod.h"

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
    void erase(uint32_t nr) {
        if (nr < notes_.size()) notes_[nr].known = false;
    }
    /// Forgets the notes of the records from this number on.
    void cut(uint32_t nr) {
        if (nr < notes_.size()) notes_.resize(nr);
    }

  private:
    struct Place {
        Note note;
        bool known = false;
    };
    std::vector<Place> notes_;
};

/// Notes that not all records have, and that take more than a word. Pointers to them hold until the
/// next at().
template <typename Note> class LargeNotes {
  public:
    [[nodiscard]] Note* find(uint32_t nr) {
        const uint32_t* place = places_.find(nr);
        return place != nullptr ? &notes_[*place] : nullptr;
    }
    /// The note of a record, made when there is none.
    [[nodiscard]] Note& at(uint32_t nr) {
        if (Note* note = find(nr)) return *note;
        places_.set(nr, static_cast<uint32_t>(notes_.size()));
        return notes_.emplace_back();
    }
    void erase(uint32_t nr) { places_.erase(nr); }
    void cut(uint32_t nr) { places_.cut(nr); }

  private:
    RecNotes<uint32_t> places_;
    std::vector<Note> notes_; // those that were taken away stay
};

/// The records that a search has entered, of any modules: one mark a record, numbered by search, so
/// that the next search finds none without clearing any.
class RecVisits {
  public:
    void begin() { ++search_; }
    /// True the first time in a search.
    bool enter(const ModuleRec* module, uint32_t nr) {
        if (module->handle >= marks_.size()) marks_.resize(module->handle + size_t{1});
        std::vector<uint64_t>& marks = marks_[module->handle];
        if (nr >= marks.size()) marks.resize(nr + nr / 2 + size_t{1});
        if (marks[nr] == search_) return false;
        marks[nr] = search_;
        return true;
    }
    [[nodiscard]] bool entered(const ModuleRec* module, uint32_t nr) const {
        return module->handle < marks_.size() && nr < marks_[module->handle].size() &&
               marks_[module->handle][nr] == search_;
    }

  private:
    std::vector<std::vector<uint64_t>> marks_; // by handle of the module, by number
    uint64_t search_ = 0;
};

} // namespace orvo
