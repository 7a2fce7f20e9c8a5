#pragma once

// Changes to modules that keep what makes them modules: of tokens, of groups in brackets, of
// definitions.

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace fuzz {

/// Random numbers, the same everywhere.
class Dice {
  public:
    explicit Dice(uint64_t seed) : state_(seed * 2 + 1) { static_cast<void>(below(2)); }
    /// 0..n-1; 0 when n is 0.
    size_t below(size_t n);
    bool oneIn(size_t n) { return below(n) == 0; }
    template <typename List> auto& of(List& list) { return list[below(std::size(list))]; }

  private:
    uint64_t state_;
};

/// An input is a list of texts with this line between them.
inline constexpr std::string_view separator = "\n=====\n";
std::vector<std::string> split(std::string_view input);
std::string join(const std::vector<std::string>& texts);

/// Changes modules in one to three places.
void mutateModules(std::vector<std::string>& modules, Dice& dice);
/// Swaps, repeats, drops and inserts lines; `words` are what lines begin with.
void mutateLines(std::string& text, const std::vector<std::string>& words, Dice& dice);

/// Changes an input; each target has one.
void change(std::string& input, Dice& dice);
/// Hands an input to it, or now and then to the mutation of bytes, and takes the result.
size_t mutateInput(uint8_t* data, size_t size, size_t maxSize, unsigned seed);
/// Puts texts of two inputs together; their first `lead` bytes are no text.
size_t crossInputs(std::string_view one, std::string_view other, uint8_t* out, size_t maxSize,
                   unsigned seed, size_t lead);

} // namespace fuzz
