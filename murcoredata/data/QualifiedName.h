#pragma once

// A qualified name is a path of text components, root first and leaf last, written in
// bracket form:
//
//   [Sales].[Order Date].[Year]        root "Sales", leaf "Year"
//   [a]]b].[c.d]                       components "a]b" and "c.d"
//
// Each component is enclosed in "[" and "]" with every "]" inside it doubled; components are
// joined by ".". "[" and "." need no escape inside the brackets. The text around the name is
// trimmed before parsing, the text inside a component never is.
//
// Two empty names exist and are kept apart: the name with no components (the empty text)
// and the name with one empty component ("[]"). Both answer IsEmpty(), they are not equal,
// and nothing turns one into the other.
//
// A name is a pointer to shared, immutable data (QNData): a copy costs one atomic increment,
// and every change makes new data, so other holders never see it. The data caches its hash
// and its bracket form; each is filled once, on first use, and published atomically, so any
// number of threads may read one shared name at once. A QualifiedName object itself is not
// synchronised.

#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/foundation/TString.h"
#include "murcoredata/gen-strings/StringIds.h"

// Only the declaration of small_vector: its definition (and its weight) stays with the code
// that builds or walks a component list.
#include <boost/container/container_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

/// An immutable, shared path of text components. See the top of this header for the form.
class MURCOREDATA_EXPORT QualifiedName
{
public:
    /// The shared data: the components and the two caches. Defined with the parser.
    class QNData;

    /// The components, root first, unescaped; two fit inline. To build or walk one, include
    /// <boost/container/small_vector.hpp>; `GetComponent` and `GetNumberOfComponents` need not.
    using Components = boost::container::small_vector<TString, 2>;

    /// A caller's memo of parsed names, keyed by the raw input text.
    using ParseCache = std::unordered_map<TString, QualifiedName>;

    //===--------------------------------------------------------------------------------===//
    // Construction
    //===--------------------------------------------------------------------------------===//

    /// No components; shares one process-wide empty data.
    QualifiedName();
    /// Exactly one component, the text as given: no parsing, no trimming. `QualifiedName(u"a.b")`
    /// is the single component "a.b", whose bracket form is "[a.b]".
    explicit QualifiedName(TString component);
    /// Two components as given.
    QualifiedName(TString root, TString leaf);
    /// Takes the components over.
    explicit QualifiedName(Components&& components);
    /// Takes the data over; it must not be null.
    explicit QualifiedName(std::shared_ptr<QNData>&& data) noexcept;

    QualifiedName(const QualifiedName&) = default;
    /// A moved-from name is only fit for assignment or destruction.
    QualifiedName(QualifiedName&&) noexcept = default;
    QualifiedName& operator=(const QualifiedName&) = default;
    QualifiedName& operator=(QualifiedName&&) noexcept = default;
    virtual ~QualifiedName();

    void Swap(QualifiedName& other) noexcept { m_data.swap(other.m_data); }

    //===--------------------------------------------------------------------------------===//
    // Parsing. There is one parser: the Global and Local forms are the same.
    //===--------------------------------------------------------------------------------===//

    /// Parses the bracket form. The empty or blank text gives the name with no components.
    /// Bad text throws `QualifiedFieldNameParseException` (catch it as `QualifiedNameException`).
    static QualifiedName ParseGlobal(const TString& text);
    static QualifiedName ParseLocal(const TString& text);
    /// Parses through `cache`: a hit returns the stored name (sharing its data); a miss parses
    /// and stores the result under `text`. A failed parse stores nothing. `cache` is not locked.
    static QualifiedName ParseGlobal(const TString& text, ParseCache& cache);
    static QualifiedName ParseLocal(const TString& text, ParseCache& cache);
    /// One component holding `text` as given, as `QualifiedName(TString)`.
    static QualifiedName ParseUnquoted(const TString& text);
    /// Whether `ParseGlobal` would accept `text`. Never throws for bad text.
    [[nodiscard]] static bool CanParseQualifiedName(const TString& text);
    /// A new name, or null on bad text when `throwOnError` is false; with true, bad text
    /// throws as `ParseGlobal` does.
    [[nodiscard]] static std::unique_ptr<QualifiedName> TryParseQualifiedName(const TString& text, bool throwOnError);

    //===--------------------------------------------------------------------------------===//
    // Reading
    //===--------------------------------------------------------------------------------===//

    /// The bracket form; the empty text for no components, "[]" for one empty component. Built
    /// once per data; the reference lives as long as any name sharing that data.
    const TString& GetFullValue() const;
    const Components& GetComponents() const;
    size_t GetNumberOfComponents() const;
    /// Component `i`, root at 0. The check admits `i` up to the count itself; that one slot
    /// past the leaf reads as the empty text. Beyond it, a logic assertion.
    const TString& GetComponent(size_t i) const;
    /// The root and the leaf; a logic assertion when there are no components.
    const TString& GetRootValue() const;
    const TString& GetLeafValue() const;
    /// The root and the leaf, or an empty text when there are no components.
    const TString& TryGetRootValue() const;
    const TString& TryGetLeafValue() const;
    /// True with no components and with one empty component; false with two or more.
    bool IsEmpty() const;

    //===--------------------------------------------------------------------------------===//
    // Changing in place: the name gets new data; other holders of the old data see nothing.
    //===--------------------------------------------------------------------------------===//

    void Clear();
    /// Appends a leaf.
    void PushValue(TString value);
    /// Inserts a new root.
    void PushRoot(TString value);
    /// Removes and returns the leaf; with no components returns the empty text and changes nothing.
    TString PopValue();
    /// Removes and returns the root; with no components as `PopValue`.
    TString PopRoot();
    /// Replace the leaf or the root; a logic assertion when there are no components.
    void ReplaceValue(TString value);
    void ReplaceRoot(TString value);
    void SetRootValue(TString value);

    //===--------------------------------------------------------------------------------===//
    // New name from this one
    //===--------------------------------------------------------------------------------===//

    /// Without the leaf (the root); `out` gets what was dropped, or is cleared when there was
    /// nothing to drop.
    QualifiedName PopLeafValue() const;
    QualifiedName PopLeafValue(TString& out) const;
    QualifiedName PopRootValue() const;
    QualifiedName PopRootValue(TString& out) const;
    QualifiedName PushLeafValue(TString value) const;
    QualifiedName PushRootValue(TString value) const;
    /// A logic assertion when there are no components.
    QualifiedName ReplaceRootValue(TString value) const;
    QualifiedName ReplaceLeafValue(TString value) const;

    //===--------------------------------------------------------------------------------===//
    // Comparison and hashing
    //===--------------------------------------------------------------------------------===//

    /// Same components in the same order, by code unit. The caches take no part.
    bool operator==(const QualifiedName& other) const;
    bool operator!=(const QualifiedName& other) const { return !(*this == other); }
    /// Orders by the bracket texts, not component by component: "[a b]" < "[a]" < "[a].[b]",
    /// because the unit after a component (" ", "]" or ".") takes part.
    bool operator<(const QualifiedName& other) const;
    /// Negative, zero or positive, on the bracket texts.
    int Compare(const QualifiedName& other) const;
    int CompareNoCase(const QualifiedName& other) const;

    /// Seeded with 0xDEADBEEF, each component's UTF-16 bytes are hashed by THash32 with the
    /// running value as the seed. No components hash to 0xDEADBEEF. Names with equal
    /// components hash alike however they were made.
    uint32_t Hash() const;

    /// The bytes of the components' text; the cached bracket form is not counted.
    size_t EstimateSizeOfReferencedMemoryInBytes() const;

private:
    std::shared_ptr<QNData> m_data; // never null, except in a moved-from name
};

/// Orders names by their leaves, lower-cased. A name with no leaf trips `GetLeafValue`.
class MURCOREDATA_EXPORT QualifiedNameCompareLeafValueNoCase
{
public:
    QualifiedNameCompareLeafValueNoCase() = default;
    QualifiedNameCompareLeafValueNoCase(const QualifiedNameCompareLeafValueNoCase&) = default;
    QualifiedNameCompareLeafValueNoCase& operator=(const QualifiedNameCompareLeafValueNoCase&) = default;
    virtual ~QualifiedNameCompareLeafValueNoCase();

    bool operator()(const QualifiedName& a, const QualifiedName& b) const;
};

//===------------------------------------------------------------------------------------===//
// Exceptions
//===------------------------------------------------------------------------------------===//

/// A failure about a qualified name; carries the text that was being read.
class MURCOREDATA_EXPORT QualifiedNameException : public MurvaneException
{
public:
    /// With error source 4 and status 2.
    QualifiedNameException(const TString& message, const TString& input, const MurvaneError& error);
    QualifiedNameException(const TString& message, const TString& input, const TError::ErrorInfo& info);
    ~QualifiedNameException() override;

    TString GetInput() const { return m_input; }

    QualifiedNameException* Clone() const override;
    [[noreturn]] void Throw() const override;

private:
    TString m_input;
};

/// What the parser throws. The message is "Qualified Name Parse Error --- <reason> --- Input:
/// <trimmed input>", the reason from the string table; the input is the trimmed text.
class MURCOREDATA_EXPORT QualifiedFieldNameParseException : public QualifiedNameException
{
public:
    QualifiedFieldNameParseException(CoreData::StringId reason, const TString& input, const TError::ErrorInfo& info);
    ~QualifiedFieldNameParseException() override;

    QualifiedFieldNameParseException* Clone() const override;
    [[noreturn]] void Throw() const override;
};

//===------------------------------------------------------------------------------------===//
// Output and literal
//===------------------------------------------------------------------------------------===//

/// The bracket form, in UTF-8.
MURCOREDATA_EXPORT std::ostream& operator<<(std::ostream& out, const QualifiedName& name);
/// "{", the bracket forms separated by ", ", "}".
MURCOREDATA_EXPORT std::ostream& operator<<(std::ostream& out, const std::set<QualifiedName>& names);
MURCOREDATA_EXPORT std::ostream& operator<<(std::ostream& out, const std::vector<QualifiedName>& names);

/// u"[a].[b]"_qn parses with `ParseGlobal`, and throws as it does.
MURCOREDATA_EXPORT QualifiedName operator"" _qn(const char16_t* text, size_t length);

namespace std {
template <>
struct hash<QualifiedName>
{
    size_t operator()(const QualifiedName& name) const { return name.Hash(); }
};
} // namespace std
