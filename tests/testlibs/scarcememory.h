#pragma once

#include <functional>

namespace testlibs {

/// Which of a program's requests for memory are refused: one of them, or all from one on.
enum class Refusal { One, AllFromThereOn };

/// How a function ended, tried once for each of its requests for memory in a process of its own.
struct Endings
{
    int wrong = 0; ///< It came back, and what it brought was wrong.
    int crashed = 0; ///< By a signal other than the one of an orderly abort.
    int right = 0;
    int thrown = 0; ///< std::bad_alloc left it.
    int aborted = 0; ///< std::bad_alloc met a function that lets nothing out, as many of Qt's.
    /// Of these, where the check afterwards was not content with what was left behind.
    int leftWrong = 0;

    int count() const { return wrong + crashed + right + thrown + aborted; }
};

/// Runs @p operation, which says whether its result is right, with each of its requests for memory
/// refused in turn, until there is none left to refuse; @p prepare before each and @p check after,
/// which says whether what it left behind is right.
Endings refuseEachRequest(
    Refusal refusal, const std::function<bool()> &operation,
    const std::function<void()> &prepare = [] {},
    const std::function<bool()> &check = [] { return true; });

} // namespace testlibs
