#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>

namespace orvo {

/// Puts a variable back to the value it had (or sets it to `now` meanwhile) when the scope ends.
template <typename T> class Restore {
  public:
    explicit Restore(T& variable) : variable_(variable), saved_(variable) {}
    Restore(T& variable, T now)
        : variable_(variable), saved_(std::exchange(variable, std::move(now))) {}
    Restore(const Restore&) = delete;
    Restore& operator=(const Restore&) = delete;
    ~Restore() { variable_ = std::move(saved_); }

  private:
    T& variable_;
    T saved_;
};

/// Counts the nesting of a recursion over input; `tooDeep()` tells when the limit is passed.
class Depth {
  public:
    Depth(uint32_t& counter, uint32_t limit) : counter_(counter), limit_(limit) { ++counter_; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;
    ~Depth() { --counter_; }
    [[nodiscard]] bool tooDeep() const { return counter_ > limit_; }

  private:
    uint32_t& counter_;
    uint32_t limit_;
};

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
/// Owner of an open file. Who must know whether closing worked releases it and closes it himself.
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Deletes an object in the way that its maker noted.
template <typename T> struct NotedDelete {
    void (*destroy)(T*) = nullptr;
    void operator()(T* object) const { destroy(object); }
};
/// Owner of an object whose type is complete only where it is made, by makeOwned: records of a low
/// layer hold what higher ones keep about them.
template <typename T> using Owned = std::unique_ptr<T, NotedDelete<T>>;
template <typename T> Owned<T> makeOwned() {
    return {new T, {[](T* object) { delete object; }}};
}

} // namespace orvo
