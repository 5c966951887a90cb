#pragma once

#include <ostream>

/// Stream output of containers for diagnostics and test messages.
namespace StreamOperators {

/// Writes "{", the elements separated by ", ", "}", each through its own `operator<<`.
///
/// Example:
///   OutputContainer(out, std::vector<QualifiedName>{"[a]"_qn, "[b].[c]"_qn});  // {[a], [b].[c]}
template <typename Container>
std::ostream& OutputContainer(std::ostream& out, const Container& items)
{
    out << '{';
    bool first = true;
    for (const auto& item : items) {
        if (!first)
            out << ", ";
        out << item;
        first = false;
    }
    return out << '}';
}

} // namespace StreamOperators
