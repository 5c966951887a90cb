#include "murcoredata/data/CollatorName.h"

#include "murcoredata/core/LanguageUtils.h"
#include "murcoredata/data/CollatorNameTables.h"
#include "murcoredata/data/CoreICUUtils.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/TLog.h"

#include <unicode/uloc.h>

#include <map>

namespace {

using AttributeList = std::vector<std::pair<ICUCollator::Attr, ICUColAttributeValue>>;

// A collator name's parts: split at each "_", empty parts kept, but no parts at all for an
// empty name.
std::vector<TString> SplitName(const char16_t* name)
{
    if (name == nullptr || *name == 0)
        return {};
    return TString(name).split(u'_', TString::KeepEmptyParts);
}

TString JoinParts(const std::vector<TString>& parts)
{
    TString joined;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            joined += u'_';
        joined += parts[i];
    }
    return joined;
}

// One of ICU's locale-part getters into a buffer of 31 chars; a failure throws with the
// locale as context. Text that fills the buffer exactly comes without a NUL, so the length
// ICU reports is what counts.
using LocalePartGetter = int32_t (*)(const char*, char*, int32_t, UErrorCode*);

TString GetLocalePart(LocalePartGetter getter, const std::string& locale)
{
    char buffer[31];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = getter(locale.c_str(), buffer, int32_t(sizeof buffer), &status);
    if (U_FAILURE(status))
        CoreICUUtils::ThrowICUException(status, TString::fromUtf8(locale.c_str()));
    return TString::fromUtf8(buffer, std::min<int32_t>(length, int32_t(sizeof buffer)));
}

// Sort option 2 and 3 have no meaning for a collator.
[[noreturn]] void RejectSortOption(int sortOpt, bool icuWriter)
{
    LogMessage(TString(u"Collation sort option not handled: ") + TString::number(sortOpt));
    if (icuWriter)
        MUR_LOGIC_FAIL("false", LogicAssert_0xBC905FDE);
    MUR_LOGIC_FAIL("false", LogicAssert_0x8E052837);
}

// Strength and alternate handling from the punctuation option.
void StrengthFromPunct(Collation::PunctOpt punctOpt, ICUColAttributeValue& strength, ICUColAttributeValue& alternate)
{
    strength = MurICU::UCOL_DEFAULT;
    alternate = MurICU::UCOL_DEFAULT;
    if (punctOpt == Collation::PunctIgnore) {
        strength = MurICU::UCOL_TERTIARY;
        alternate = MurICU::UCOL_SHIFTED;
    } else if (punctOpt == Collation::PunctQuaternary) {
        strength = MurICU::UCOL_QUATERNARY;
    }
}

ICUColAttributeValue CaseFirstFromCase(Collation::CaseOpt caseOpt)
{
    if (caseOpt == Collation::CaseUpperFirst)
        return MurICU::UCOL_UPPER_FIRST;
    if (caseOpt == Collation::CaseLowerFirst)
        return MurICU::UCOL_LOWER_FIRST;
    return MurICU::UCOL_DEFAULT;
}

} // namespace

void CollatorNamePartsFromAttributes(const AttributeList& attributes, std::vector<TString>& parts)
{
    using namespace CollatorNameTables;

    // Ordered by first letter; a later part of a letter replaces the earlier one.
    std::map<char16_t, TString> byLetter;
    for (auto i = parts.begin(); i != parts.end(); ++i) {
        MUR_LOGIC_ASSERT(!i->isEmpty(), LogicAssert_0x930903CF);
        byLetter[(*i)[0]] = *i;
    }

    for (auto i = attributes.begin(); i != attributes.end(); ++i) {
        const AttrEntry* a = FindAttr(i->first);
        if (a == nullptr)
            MUR_LOGIC_FAIL("a.attr.enumVal == i->first.enumVal", LogicAssert_0x1E0FC030);
        if (i->second == MurICU::UCOL_DEFAULT || i->second == a->defaultValue) {
            byLetter.erase(a->letter);
            continue;
        }
        const ValueEntry* v = FindValue(i->second);
        if (v == nullptr)
            MUR_LOGIC_FAIL("v.value == i->second", LogicAssert_0x7FDA70DD);
        TString part(a->letter, 1);
        part += v->letter;
        byLetter[a->letter] = part;
    }

    parts.clear();
    parts.reserve(byLetter.size());
    for (const auto& entry : byLetter)
        parts.push_back(entry.second);
}

TString MakeCollatorName(unsigned int lcid, unsigned int cmpFlags, bool wordSort)
{
    static const char16_t* const cmpStrength[] = {u"S1", u"S2", u"S3", u"S4"};

    const bool ignoreCase = (cmpFlags & CmpFlags::IgnoreCase) != 0;
    const bool ignoreNonSpace = (cmpFlags & CmpFlags::IgnoreNonSpace) != 0;
    const bool ignoreSymbols = (cmpFlags & CmpFlags::IgnoreSymbols) != 0;
    const bool windows = (cmpFlags & CmpFlags::WindowsSpecific) != 0;

    // Ignoring non-spacing marks is primary strength whatever the case says; case alone is
    // secondary; symbols alone are tertiary.
    int strength = -1;
    if (ignoreNonSpace)
        strength = 0;
    else if (ignoreCase)
        strength = 1;
    else if (ignoreSymbols)
        strength = 2;

    TString text;
    auto addPart = [&text](const TString& part) {
        if (!text.isEmpty())
            text += u'_';
        text += part;
    };

    if (ignoreSymbols)
        addPart(TString(u"AS"));
    // Accent-insensitive but case-sensitive: primary strength with the case level on.
    if (!ignoreCase && ignoreNonSpace)
        addPart(TString(u"EO"));

    char localeBuffer[157];
    LanguageUtilsInternal::GetLocaleForLCID(lcid, localeBuffer, sizeof localeBuffer);
    std::string locale = localeBuffer;
    if (windows)
        locale += "_VWIN";

    const TString language = GetLocalePart(&uloc_getLanguage, locale);
    if (!language.isEmpty())
        addPart(u'L' + language);
    else if ((lcid == 0 || lcid == LocaleIds::UserDefault) && CoreICUUtils::IsVersionAtLeast(68, 0))
        // ICU 68 reads no language out of "root"; the root collation is still named by it.
        addPart(u'L' + TString::fromUtf8(locale.c_str()));

    const TString country = GetLocalePart(&uloc_getCountry, locale);
    if (!country.isEmpty())
        addPart(u'R' + country);

    if (strength != -1) {
        MUR_LOGIC_ASSERT(strength >= 0 && size_t(strength) <= (sizeof(cmpStrength) / sizeof(cmpStrength[0])),
                         LogicAssert_0xCEB1BB08);
        addPart(TString(cmpStrength[strength]));
    }
    if (windows)
        text += TString(u"_VWIN");
    if (wordSort)
        addPart(TString(u"WO"));

    const TString script = GetLocalePart(&uloc_getScript, locale);
    if (!script.isEmpty())
        addPart(u'Z' + script);

    return text.toUpper();
}

TString MakeCollatorName(const char16_t* name, Collation::CaseOpt caseOpt, Collation::AccentOpt accentOpt,
                         Collation::SortOpt sortOpt, Collation::PunctOpt punctOpt)
{
    std::vector<TString> parts = SplitName(name);

    ICUColAttributeValue strength, alternate;
    StrengthFromPunct(punctOpt, strength, alternate);

    ICUColAttributeValue caseFirst = MurICU::UCOL_DEFAULT;
    ICUColAttributeValue caseLevel = MurICU::UCOL_DEFAULT;
    if (caseOpt == Collation::CaseIgnore) {
        strength = accentOpt == Collation::AccentIgnore ? MurICU::UCOL_PRIMARY : MurICU::UCOL_SECONDARY;
    } else {
        caseFirst = CaseFirstFromCase(caseOpt);
        if (accentOpt == Collation::AccentIgnore) {
            // Accents go, case stays: primary strength with the case level on.
            strength = MurICU::UCOL_PRIMARY;
            caseLevel = MurICU::UCOL_ON;
        }
    }

    if (sortOpt == 2 || sortOpt == 3)
        RejectSortOption(sortOpt, false);
    if (sortOpt == Collation::SortIdentical)
        strength = MurICU::UCOL_IDENTICAL;
    const ICUColAttributeValue wordSort = sortOpt == Collation::SortWord ? MurICU::UCOL_ON : MurICU::UCOL_DEFAULT;

    CollatorNamePartsFromAttributes({{ICUCollator::AlternateHandling, alternate},
                                     {ICUCollator::Strength, strength},
                                     {ICUCollator::WordSort, wordSort},
                                     {ICUCollator::CaseFirst, caseFirst},
                                     {ICUCollator::CaseLevel, caseLevel}},
                                    parts);
    return JoinParts(parts);
}

TString MakeICUCollatorName(const std::string& locale, bool ignoreDigits, Collation::CaseOpt caseOpt,
                            Collation::AccentOpt accentOpt, Collation::SortOpt sortOpt, Collation::PunctOpt punctOpt)
{
    std::vector<TString> parts;
    const TString language = GetLocalePart(&uloc_getLanguage, locale);
    if (!language.isEmpty())
        parts.push_back(u'L' + language.toUpper());
    const TString country = GetLocalePart(&uloc_getCountry, locale);
    if (!country.isEmpty())
        parts.push_back(u'R' + country.toUpper());
    const TString script = GetLocalePart(&uloc_getScript, locale);
    if (!script.isEmpty())
        parts.push_back(u'Z' + script.toUpper());

    ICUColAttributeValue strength = MurICU::UCOL_DEFAULT;
    ICUColAttributeValue alternate = MurICU::UCOL_DEFAULT;
    if (!ignoreDigits)
        StrengthFromPunct(punctOpt, strength, alternate);

    const ICUColAttributeValue caseFirst = CaseFirstFromCase(caseOpt);
    if (caseOpt == Collation::CaseIgnore)
        strength = MurICU::UCOL_SECONDARY;

    if (sortOpt == 2 || sortOpt == 3)
        RejectSortOption(sortOpt, true);
    const ICUColAttributeValue wordSort = sortOpt == Collation::SortWord ? MurICU::UCOL_ON : MurICU::UCOL_DEFAULT;

    const bool accentsGo = accentOpt == Collation::AccentIgnore && !ignoreDigits;
    const ICUColAttributeValue caseLevel =
        accentsGo && caseOpt != Collation::CaseIgnore ? MurICU::UCOL_ON : MurICU::UCOL_DEFAULT;

    AttributeList attributes = {{ICUCollator::AlternateHandling, alternate},
                                {ICUCollator::Strength, accentsGo ? MurICU::UCOL_PRIMARY : strength},
                                {ICUCollator::WordSort, wordSort},
                                {ICUCollator::CaseFirst, caseFirst},
                                {ICUCollator::CaseLevel, caseLevel}};
    if (ignoreDigits)
        attributes.emplace_back(ICUCollator::IgnoreDigits, MurICU::UCOL_ON);
    CollatorNamePartsFromAttributes(attributes, parts);
    return JoinParts(parts);
}

TString CollatorNameFromLocaleName(const char* locale, bool ignoreDigits, Collation::CaseOpt caseOpt,
                                   Collation::AccentOpt accentOpt, Collation::SortOpt sortOpt,
                                   Collation::PunctOpt punctOpt)
{
    std::string text = locale != nullptr ? locale : "";
    for (char& c : text)
        if (c == '-')
            c = '_';

    lcid id = uloc_getLCID(text.c_str());
    if (id == 0)
        id = LocaleIds::UserDefault;
    TString name = MakeCollatorName(id, 0, false);

    if (ignoreDigits) {
        // Digit-ignoring means accent- and punctuation-insensitive, too.
        if (!name.isEmpty())
            name += u'_';
        name += TString(u"XO");
        accentOpt = Collation::AccentIgnore;
        punctOpt = Collation::PunctIgnore;
    }
    return MakeCollatorName(name.constData(), caseOpt, accentOpt, sortOpt, punctOpt);
}

TString ICUCollator::AddAttrToName(const char16_t* name, Attr attr, ICUColAttributeValue value)
{
    MUR_LOGIC_ASSERT(TString(name).compare(CollationType::s_binary, TString::CaseInsensitive) != 0,
                     LogicAssert_0x9B62A87D);
    std::vector<TString> parts = SplitName(name);
    CollatorNamePartsFromAttributes({{attr, value}}, parts);
    return JoinParts(parts);
}

TString ICUCollator::SetWordSort(const char16_t* name, bool on)
{
    return AddAttrToName(name, WordSort, on ? MurICU::UCOL_ON : MurICU::UCOL_OFF);
}
