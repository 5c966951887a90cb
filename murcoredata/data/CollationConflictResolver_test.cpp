#include "murcoredata/data/CollationConflictResolver.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

namespace {

// Case-sensitive and case-insensitive collations, with and without a character set.
Collation Sensitive(unsigned short charset = 0) { return Collation(u"LEN_RUS", charset); }
Collation Insensitive(unsigned short charset = 0) { return Collation(u"LEN_RUS_S2", charset); }

struct PreferSecondFor : CollationConflictResolver::Callback
{
    TString source;
    int calls = 0;
    bool PreferSecond(const Collation&, const Collation&, const TString& s) override
    {
        ++calls;
        return s == source;
    }
};

} // namespace

TEST(SourcedCollation, DefaultsAndEquality)
{
    const SourcedCollation none;
    EXPECT_TRUE(none.source.isEmpty());
    EXPECT_EQ(none.collation, GetUnknownCollation());
    EXPECT_EQ(SourcedCollation(TString(u"s"), Sensitive()), SourcedCollation(TString(u"s"), Sensitive()));
    EXPECT_NE(SourcedCollation(TString(u"s"), Sensitive()), SourcedCollation(TString(u"t"), Sensitive()));
    EXPECT_NE(SourcedCollation(TString(u"s"), Sensitive()), SourcedCollation(TString(u"s"), Sensitive(1)));
}

TEST(CollationConflictResolver, RulesInOrder)
{
    PreferSecondFor callback;
    callback.source = TString(u"db");
    const CollationConflictResolver resolver(&callback);
    const TString db(u"db"), other(u"other"), none;
    const Collation unknown = GetUnknownCollation();

    struct Row
    {
        const char* rule;
        SourcedCollation a;
        SourcedCollation b;
        bool second;
    } const rows[] = {
        // 1: a source beats none, whatever the collations; only a's lack counts.
        {"1", {none, Insensitive()}, {other, Sensitive()}, true},
        {"1 not mirrored", {other, Sensitive()}, {none, Insensitive()}, true}, // rule 3 then
        // 2: the unknown collation gives way; an unknown b has no such rule.
        {"2", {other, unknown}, {other, Sensitive()}, true},
        {"2 not mirrored", {other, Sensitive()}, {other, unknown}, false}, // both case-sensitive: rule 5
        // 3: case-insensitive wins.
        {"3 a", {other, Insensitive()}, {db, Sensitive()}, false},
        {"3 b", {other, Sensitive()}, {db, Insensitive()}, true},
        // 4: same source asks the callback.
        {"4 yes", {db, Sensitive()}, {db, Collation(u"LDE_RDE")}, true},
        {"4 no", {other, Sensitive()}, {other, Collation(u"LDE_RDE")}, false},
        // 5: b without charset, or a with one: a.
        {"5 b none", {db, Sensitive(0)}, {other, Sensitive(0)}, false},
        {"5 a has", {db, Sensitive(3)}, {other, Sensitive(4)}, false},
        // 6: only b has one: b if the names agree.
        {"6 same name", {db, Sensitive(0)}, {other, Sensitive(4)}, true},
        {"6 other name", {db, Sensitive(0)}, {other, Collation(u"LDE_RDE", 4)}, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.rule);
        const SourcedCollation* winner = resolver.ResolveCollationPair(row.a, row.b);
        EXPECT_EQ(winner, row.second ? &row.b : &row.a);
    }
    EXPECT_GE(callback.calls, 2);

    // Without a callback rule 4 never applies.
    const CollationConflictResolver plain;
    const SourcedCollation a(db, Sensitive()), b(db, Collation(u"LDE_RDE"));
    EXPECT_EQ(plain.ResolveCollationPair(a, b), &a);
}

TEST(CollationConflictResolver, FoldsAListLeftToRight)
{
    const CollationConflictResolver resolver;
    std::vector<const SourcedCollation*> list;
    EXPECT_EQ(resolver.ResolveSourcedCollation(list), nullptr);

    const SourcedCollation first(TString(), Sensitive());
    list.push_back(&first);
    auto one = resolver.ResolveSourcedCollation(list);
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(*one, first);
    EXPECT_NE(one.get(), &first); // a copy

    const SourcedCollation second(TString(u"x"), Sensitive(2));
    const SourcedCollation third(TString(u"y"), Insensitive());
    const SourcedCollation fourth(TString(u"z"), Sensitive(9));
    list = {&first, &second, &third, &fourth};
    // first < second by rule 1; second < third by rule 3; third stays against fourth.
    EXPECT_EQ(*resolver.ResolveSourcedCollation(list), third);
}
