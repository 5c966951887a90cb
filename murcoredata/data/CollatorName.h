#pragma once

// Collator names: the text that identifies a collator, the key of its pool and the name of
// every `Collation` on it.
//
// A name is a list of parts joined by "_". A part is one letter followed by its value.
//
//   Locale parts take the rest of the part:  L language   R region   V variant   Z script
//   Attribute parts are two letters, the attribute's and the value's:
//     A alternate handling   C case first   E case level   F French    H Hiragana quaternary
//     I numeric              N normalisation   S strength (default 3)   W word sort (default X)
//     X ignore digits (default X); every other attribute's default is D.
//   Value letters:  D default  1 primary  2 secondary  3 tertiary  4 quaternary  I identical
//                   X off  O on  S shifted  N non-ignorable  L lower first  U upper first
//
// Canonical form: parts sorted by first letter, at most one part a letter, attributes at
// their default left out, upper case. "LROOT" is ICU's root collation, "LEN_RUS" English
// (United States), "AS_LEN_RUS_VWIN_WO" the same shifted, Windows variant, word sort.
//
// The writers below produce this form; the reader is `CollationSpec::Parse`, which knows
// fewer letters (not C, F, I, N). Two names may mean one collator ("AS_LEN_RUS_S3" and
// "AS_LEN_RUS"); pools key on the text, and `Collation::IsEquivalent` tells that they agree.

#include "murcoredata/data/Collation.h"
#include "murcoredata/data/ICUCollator.h"

#include <string>
#include <utility>
#include <vector>

/// The name of a Windows-model identity, written directly in canonical order. `cmpFlags`
/// bits 1 (case) and 2 (non-spacing) choose the strength: both or only 2 primary, only 1
/// secondary; bit 4 alone tertiary ("S3", kept although it is the default). Bit 4 adds
/// "AS", bit 2 without bit 1 adds "EO" (case level on), the top bit adds "VWIN".
///   MakeCollatorName(0x409, 0, false) == "LEN_RUS"
///   MakeCollatorName(0x409, 4, false) == "AS_LEN_RUS_S3"
///   MakeCollatorName(0, 0, false)     == "LROOT"
MURCOREDATA_EXPORT TString MakeCollatorName(unsigned int lcid, unsigned int cmpFlags, bool wordSort);

/// `name` with the options merged in. The options replace what the name said about
/// alternate handling, strength, word sort, case first and case level: all zero options
/// remove those parts. SortOpt 2 and 3 fail a logic assertion.
///   MakeCollatorName(u"LEN_RUS_S1", 0, 0, 0, 0) == "LEN_RUS"
///   MakeCollatorName(u"LEN_RUS", CaseIgnore, 0, 0, 0) == "LEN_RUS_S2"
MURCOREDATA_EXPORT TString MakeCollatorName(const char16_t* name, Collation::CaseOpt caseOpt,
                                            Collation::AccentOpt accentOpt, Collation::SortOpt sortOpt,
                                            Collation::PunctOpt punctOpt);

/// The name of an ICU locale with options: its language, region and script (not its
/// variant), then the options. Ignoring digits drops the punctuation option and the
/// accent option's strength. SortOpt 2 and 3 fail a logic assertion; SortOpt 4 does nothing.
///   MakeICUCollatorName("de_DE", false, CaseIgnore, 0, 0, 0) == "LDE_RDE_S2"
MURCOREDATA_EXPORT TString MakeICUCollatorName(const std::string& locale, bool ignoreDigits,
                                               Collation::CaseOpt caseOpt, Collation::AccentOpt accentOpt,
                                               Collation::SortOpt sortOpt, Collation::PunctOpt punctOpt);

/// The name of a locale through its locale id (ICU's, or 1024 when it has none; a null
/// `locale` is empty). Ignoring digits adds "XO" and forces accent and punctuation ignoring.
///   CollatorNameFromLocaleName("en-US", false, 0, 0, 0, 0) == "LEN_RUS"
MURCOREDATA_EXPORT TString CollatorNameFromLocaleName(const char* locale, bool ignoreDigits,
                                                      Collation::CaseOpt caseOpt, Collation::AccentOpt accentOpt,
                                                      Collation::SortOpt sortOpt, Collation::PunctOpt punctOpt);

/// The canonicaliser under all writers but the first: keeps the last part of each first
/// letter, applies `attributes` in order (a value of -1 or the default removes the part),
/// and leaves `parts` sorted by first letter. An empty part, an attribute or value without
/// a letter fail logic assertions.
MURCOREDATA_EXPORT void CollatorNamePartsFromAttributes(
    const std::vector<std::pair<ICUCollator::Attr, ICUColAttributeValue>>& attributes, std::vector<TString>& parts);
