#include "murcoredata/data/Tuple.h"
#include "murcoredata/foundation/Caught_test.h"

#include "murcoredata/data/RecordingInspector_test.h"
#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <limits>
#include <sstream>
#include <thread>
#include <vector>

using Special = DataValueTypes::Special;

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

std::vector<uint8_t> BytesOf(const DataValue& v)
{
    std::vector<uint8_t> bytes(sizeof v);
    std::memcpy(bytes.data(), static_cast<const void*>(&v), sizeof v);
    return bytes;
}

std::vector<DataValue> Ints(std::initializer_list<long long> numbers)
{
    std::vector<DataValue> values;
    for (long long n : numbers)
        values.emplace_back(n);
    return values;
}

// The hash fold written out: h = a ^ (b + 0x9E3779B9 + (a << 6) + (a >> 2)) with a the
// member's hash and b the running value, from 0xDEADBEEF.
uint32_t Fold(std::initializer_list<uint32_t> memberHashes)
{
    uint32_t h = 0xDEADBEEFu;
    for (uint32_t a : memberHashes)
        h = a ^ (h + 0x9E3779B9u + (a << 6) + (a >> 2));
    return h;
}

using TestSupport::Caught;

void ExpectTupleOrdered(const Tuple& lesser, const Tuple& greater)
{
    EXPECT_TRUE(lesser < greater);
    EXPECT_FALSE(greater < lesser);
    EXPECT_FALSE(lesser == greater);
    EXPECT_TRUE(lesser != greater);
}

} // namespace

//===----------------------------------------------------------------------===//
// Construction and members
//===----------------------------------------------------------------------===//

TEST(Tuple, CountedTuplesHaveUnknownNullMembers)
{
    const Tuple t(3);
    ASSERT_EQ(t.GetSize(), 3u);
    for (unsigned int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(BytesOf(t.GetDataValue(i)), BytesOf(DataValue()));
        EXPECT_EQ(t.GetDataValue(i).GetType(), DataType::Unknown);
        EXPECT_TRUE(t.GetDataValue(i).IsNull());
    }
    EXPECT_EQ(Tuple().GetSize(), 0u);
    EXPECT_EQ(Tuple(0u).GetSize(), 0u);
}

TEST(Tuple, ConstructorsCopyOrTakeOver)
{
    const std::vector<DataValue> values = Ints({4, 5});
    const Tuple copied(values);
    EXPECT_EQ(values.size(), 2u);
    EXPECT_EQ(copied.GetValues(), values);

    std::vector<DataValue> moving = Ints({6, 7, 8});
    const DataValue* storage = moving.data();
    const Tuple taken(std::move(moving));
    EXPECT_EQ(taken.GetValues().data(), storage); // the vector itself, not a copy
    EXPECT_EQ(taken.GetDataValue(2), DataValue(8));

    DataValue one(9);
    const Tuple single(std::move(one));
    ASSERT_EQ(single.GetSize(), 1u);
    EXPECT_EQ(single.GetDataValue(0), DataValue(9));
    EXPECT_EQ(one.GetType(), DataType::Unknown); // moved from

    // A copy has the members and starts unshared.
    const RefCntPtr<Tuple> shared = makeRefCnt<Tuple>(Ints({1, 2}));
    const Tuple copy(*shared);
    EXPECT_EQ(copy.GetReferenceCount(), 0);
    EXPECT_EQ(shared->GetReferenceCount(), 1);
    EXPECT_EQ(copy, *shared);
}

TEST(Tuple, IndexesAtOrAboveTheSizeAreLogicErrors)
{
    Tuple t(3);
    for (unsigned int index : {3u, 4u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(index);
        const auto get = Caught([&] { (void)t.GetDataValue(index); });
        EXPECT_EQ(typeid(*get), typeid(LogicException));
        EXPECT_EQ(get->GetErrorInfo().GetError().GetCode(), 0xC28664A1u);
        EXPECT_EQ(get->GetErrorInfo().GetError().GetName(), TString(u"LogicException_LogicAssert_0xC28664A1"));
        EXPECT_TRUE(get->GetMessagesFront().startsWith(TString(u"data/Tuple.cpp("))) << get->what();
        EXPECT_TRUE(get->GetMessagesFront().endsWith(TString(u"size_t(index) < m_values.size()"))) << get->what();

        const auto set = Caught([&] { t.SetDataValue(index, DataValue(1)); });
        EXPECT_EQ(typeid(*set), typeid(LogicException));
        EXPECT_EQ(set->GetErrorInfo().GetError().GetCode(), 0x5E2C5F16u);
        EXPECT_TRUE(set->GetMessagesFront().endsWith(TString(u"size_t(idx) < m_values.size()"))) << set->what();
    }
    EXPECT_THROW((void)Tuple().GetDataValue(0), LogicException);
    // A failed set changes nothing.
    EXPECT_EQ(t, Tuple(3));
}

TEST(Tuple, SizeEstimate)
{
    EXPECT_EQ(Tuple().EstimateTotalSizeInBytes(), 48u);
    EXPECT_EQ(Tuple(3).EstimateTotalSizeInBytes(), 96u);
    EXPECT_EQ(Tuple(Ints({1})).EstimateTotalSizeInBytes(), 64u);
}

//===----------------------------------------------------------------------===//
// Hash
//===----------------------------------------------------------------------===//

// Member hashes are those of DataValue (pinned in its own test): 42 -> 0x69936883,
// 1 -> 0x465507E8, a null integer -> 0x78E2CE38, 0 -> 0x63DC4486, 1.5 -> 0x6C792159,
// the default value -> 0xC3B562A7. The expected numbers were folded by hand in Python.
TEST(Tuple, HashesArePinned)
{
    EXPECT_EQ(Tuple().Hash(), 0xDEADBEEFu);
    EXPECT_EQ(Tuple(Ints({42})).Hash(), 0x95B75B0Bu);
    EXPECT_EQ(Tuple(Ints({1, 2, 3})).Hash(), 0x9320F5B6u);
    EXPECT_EQ(Tuple(Ints({3, 2, 1})).Hash(), 0x40F11F36u); // the fold is ordered
    EXPECT_EQ(Tuple(3).Hash(), 0x50995106u);
    EXPECT_EQ(Tuple(3).Hash(), Fold({0xC3B562A7u, 0xC3B562A7u, 0xC3B562A7u}));
    EXPECT_EQ(Tuple(Ints({42})).Hash(), Fold({0x69936883u}));

    // A tuple inside a tuple brings its own hash.
    std::vector<DataValue> outer;
    outer.emplace_back(makeRefCnt<Tuple>(Ints({42})));
    outer.push_back(DataValue::FromDouble(1.5));
    EXPECT_EQ(Tuple(outer).Hash(), Fold({0x95B75B0Bu, 0x6C792159u}));
}

TEST(Tuple, ANullIntegerAndZeroHashApart)
{
    const Tuple withNull(std::vector<DataValue>{DataValue(Special::Null, DataType::Integer)});
    const Tuple withZero(Ints({0}));
    EXPECT_EQ(withNull.Hash(), 0xAB33B40Eu);
    EXPECT_EQ(withZero.Hash(), 0xEF312FCFu);
    EXPECT_NE(withNull, withZero);
}

TEST(Tuple, SetDataValueForgetsTheHash)
{
    Tuple a(Ints({1, 2, 3}));
    const Tuple b(Ints({1, 2, 3}));
    EXPECT_EQ(a.Hash(), 0x9320F5B6u);
    EXPECT_EQ(a, b);

    a.SetDataValue(2, DataValue(4));
    EXPECT_EQ(a.Hash(), Tuple(Ints({1, 2, 4})).Hash());
    EXPECT_NE(a.Hash(), 0x9320F5B6u);
    EXPECT_NE(a, b);
    EXPECT_EQ(a.GetDataValue(2), DataValue(4));

    // Back to the old member, back to the old hash.
    a.SetDataValue(2, DataValue(3));
    EXPECT_EQ(a.Hash(), 0x9320F5B6u);
    EXPECT_EQ(a, b);
}

//===----------------------------------------------------------------------===//
// Equality and order
//===----------------------------------------------------------------------===//

TEST(Tuple, EqualityIsMemberWise)
{
    EXPECT_EQ(Tuple(), Tuple());
    EXPECT_EQ(Tuple(Ints({1, 2})), Tuple(Ints({1, 2})));

    // Built another way: filled in place.
    Tuple filled(2);
    filled.SetDataValue(0, DataValue(1));
    filled.SetDataValue(1, DataValue(2));
    EXPECT_EQ(filled, Tuple(Ints({1, 2})));
    EXPECT_EQ(filled.Hash(), Tuple(Ints({1, 2})).Hash());

    EXPECT_NE(Tuple(Ints({1, 2})), Tuple(Ints({2, 1})));
    EXPECT_NE(Tuple(Ints({1})), Tuple(Ints({1, 1})));
    EXPECT_NE(Tuple(), Tuple(1));
    // Members follow DataValue: 1 is not 1.0, a NaN equals a NaN with the same bits.
    EXPECT_NE(Tuple(Ints({1})), Tuple(std::vector<DataValue>{DataValue::FromDouble(1.0)}));
    EXPECT_EQ(Tuple(std::vector<DataValue>{DataValue::FromDouble(kNaN)}),
              Tuple(std::vector<DataValue>{DataValue::FromDouble(kNaN)}));
    // Decimals play no part in a real's equality or hash.
    EXPECT_EQ(Tuple(std::vector<DataValue>{DataValue(1.5, 6, 2)}),
              Tuple(std::vector<DataValue>{DataValue::FromDouble(1.5)}));
}

TEST(Tuple, TheShorterTupleIsLessWhateverItsMembers)
{
    ExpectTupleOrdered(Tuple(Ints({1000})), Tuple(Ints({1, 2})));
    ExpectTupleOrdered(Tuple(), Tuple(1));
    ExpectTupleOrdered(Tuple(Ints({9, 9})), Tuple(3));
}

TEST(Tuple, TuplesOfOneSizeAreOrderedMemberByMember)
{
    ExpectTupleOrdered(Tuple(Ints({1, 5})), Tuple(Ints({2, 0})));
    ExpectTupleOrdered(Tuple(Ints({1, 2, 3})), Tuple(Ints({1, 2, 4})));
    // A null member is below an ordinary one of its type.
    ExpectTupleOrdered(Tuple(std::vector<DataValue>{DataValue(Special::Null, DataType::Integer)}), Tuple(Ints({-5})));
    // Neither is less where the members are unordered (a NaN): the next member decides.
    const DataValue nan = DataValue::FromDouble(kNaN);
    ExpectTupleOrdered(Tuple(std::vector<DataValue>{nan, DataValue(1)}), Tuple(std::vector<DataValue>{nan, DataValue(2)}));
    // 1 and 1.0 are neither equal nor ordered, so such tuples are neither.
    const Tuple one(Ints({1}));
    const Tuple oneReal(std::vector<DataValue>{DataValue::FromDouble(1.0)});
    EXPECT_FALSE(one < oneReal);
    EXPECT_FALSE(oneReal < one);
    EXPECT_NE(one, oneReal);
    // Equal tuples are not less.
    EXPECT_FALSE(Tuple(Ints({1, 2})) < Tuple(Ints({1, 2})));
    EXPECT_FALSE(Tuple() < Tuple());
}

//===----------------------------------------------------------------------===//
// Visiting and text
//===----------------------------------------------------------------------===//

TEST(Tuple, TheInspectorSeesTheMembersInOrder)
{
    std::vector<DataValue> values;
    values.emplace_back(7);
    values.emplace_back(true);
    values.emplace_back(Special::Missing, DataType::Date);
    values.emplace_back(makeRefCnt<Tuple>(Ints({1, 2})));
    const Tuple t(values);
    TestSupport::RecordingInspector inspector;
    t.Accept(inspector);
    const std::vector<std::string> expected = {"int 7", "bool true", "special 9 of 5", "tuple of 2"};
    EXPECT_EQ(inspector.calls, expected);

    TestSupport::RecordingInspector none;
    Tuple().Accept(none);
    EXPECT_TRUE(none.calls.empty());
}

TEST(Tuple, StreamsItsMembers)
{
    std::vector<DataValue> values = Ints({42});
    values.push_back(DataValue::FromDouble(2.5));
    values.emplace_back();
    std::ostringstream out;
    out << Tuple(values);
    EXPECT_EQ(out.str(), "\"42\",\"2.5\",\"NULL\"");

    std::ostringstream empty;
    empty << Tuple();
    EXPECT_EQ(empty.str(), "");

    std::ostringstream list;
    list << std::vector<RefCntPtr<Tuple>>{makeRefCnt<Tuple>(Ints({1, 2})), makeRefCnt<Tuple>(Ints({3}))};
    EXPECT_EQ(list.str(), "\"1\",\"2\",\"3\"");

    std::ostringstream broken;
    const std::vector<RefCntPtr<Tuple>> withNull = {makeRefCnt<Tuple>(), nullptr};
    EXPECT_THROW(broken << withNull, LogicException);
}

TEST(Tuple, ListsOfTuplesCompareTheTuples)
{
    using List = std::vector<RefCntPtr<Tuple>>;
    const List a = {makeRefCnt<Tuple>(Ints({1})), makeRefCnt<Tuple>(Ints({2, 3}))};
    const List b = {makeRefCnt<Tuple>(Ints({1})), makeRefCnt<Tuple>(Ints({2, 3}))};
    EXPECT_TRUE(a == b); // other objects, equal tuples
    const List c = {makeRefCnt<Tuple>(Ints({1})), makeRefCnt<Tuple>(Ints({2, 4}))};
    EXPECT_FALSE(a == c);
    EXPECT_FALSE(a == List{a[0]});
    EXPECT_TRUE(List() == List());
    const List withNull = {makeRefCnt<Tuple>(Ints({1})), nullptr};
    EXPECT_THROW((void)(a == withNull), LogicException);
    EXPECT_THROW((void)(withNull == withNull), LogicException);
}

//===----------------------------------------------------------------------===//
// Threads
//===----------------------------------------------------------------------===//

// Threads that hash and compare one shared tuple for the first time all store the same
// number; the cache is atomic, so the sanitizer build sees no race either.
TEST(Tuple, ThreadsHashAndCompareOneSharedTuple)
{
    for (int round = 0; round < 50; ++round) {
        const RefCntPtr<Tuple> shared = makeRefCnt<Tuple>(Ints({1, 2, 3}));
        const RefCntPtr<Tuple> twin = makeRefCnt<Tuple>(Ints({1, 2, 3}));
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                if (shared->Hash() != 0x9320F5B6u)
                    ++wrong;
                if (!(*shared == *twin))
                    ++wrong;
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(wrong.load(), 0) << round;
    }
}
