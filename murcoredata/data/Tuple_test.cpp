#include "murcoredata/data/Tuple.h"
#include "murcoredata/foundation/Caught_test.h"

#include "murcoredata/data/RecordingInspector_test.h"
#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <sstream>
#include <thread>
#include <vector>

using Special = DataValueTypes::Special;

namespace {

const DataValue kNaN = DataValue::FromDouble(std::numeric_limits<double>::quiet_NaN());

std::vector<DataValue> Ints(std::initializer_list<long long> numbers)
{
    std::vector<DataValue> values;
    for (long long n : numbers)
        values.emplace_back(n);
    return values;
}

Tuple Of(std::initializer_list<DataValue> values)
{
    return Tuple(std::vector<DataValue>(values));
}

} // namespace

// --- Construction and members

TEST(Tuple, ConstructorsCopyOrTakeOver)
{
    const Tuple counted(3); // members of unknown type, null
    ASSERT_EQ(counted.GetSize(), 3u);
    for (unsigned int i = 0; i < 3; ++i) {
        EXPECT_EQ(counted.GetDataValue(i).GetType(), DataType::Unknown) << i;
        EXPECT_TRUE(counted.GetDataValue(i).IsNull()) << i;
    }
    EXPECT_EQ(Tuple().GetSize(), 0u);
    EXPECT_EQ(Tuple(0u).GetSize(), 0u);

    const std::vector<DataValue> values = Ints({4, 5});
    EXPECT_EQ(Tuple(values).GetValues(), values);
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
    const auto get = TestSupport::Caught([&] { (void)t.GetDataValue(3); });
    EXPECT_EQ(typeid(*get), typeid(LogicException));
    EXPECT_EQ(get->GetErrorInfo().GetError().GetName(), TString(u"LogicException_LogicAssert_0xC28664A1"));
    EXPECT_TRUE(get->GetMessagesFront().startsWith(TString(u"data/Tuple.cpp("))) << get->what();
    for (unsigned int index : {3u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(index);
        TestSupport::ExpectLogicFailure([&] { (void)t.GetDataValue(index); }, 0xC28664A1u, "size_t(index) < m_values.size()");
        TestSupport::ExpectLogicFailure([&] { t.SetDataValue(index, DataValue(1)); }, 0x5E2C5F16u, "size_t(idx) < m_values.size()");
    }
    EXPECT_THROW((void)Tuple().GetDataValue(0), LogicException);
    EXPECT_EQ(t, Tuple(3)); // a failed set changes nothing
}

TEST(Tuple, SizeEstimate)
{
    EXPECT_EQ(Tuple().EstimateTotalSizeInBytes(), 48u);
    EXPECT_EQ(Tuple(3).EstimateTotalSizeInBytes(), 96u);
    EXPECT_EQ(Tuple(Ints({1})).EstimateTotalSizeInBytes(), 64u);
}

// --- Hash

// h = a ^ (b + 0x9E3779B9 + (a << 6) + (a >> 2)) over the member hashes a from b = 0xDEADBEEF,
// folded by hand in Python from the pinned DataValue hashes.
TEST(Tuple, HashesArePinned)
{
    EXPECT_EQ(Tuple().Hash(), 0xDEADBEEFu);
    EXPECT_EQ(Tuple(Ints({42})).Hash(), 0x95B75B0Bu);
    EXPECT_EQ(Tuple(Ints({1, 2, 3})).Hash(), 0x9320F5B6u);
    EXPECT_EQ(Tuple(Ints({3, 2, 1})).Hash(), 0x40F11F36u); // the fold is ordered
    EXPECT_EQ(Tuple(3).Hash(), 0x50995106u);
    // A null integer and zero hash apart.
    EXPECT_EQ(Of({DataValue(Special::Null, DataType::Integer)}).Hash(), 0xAB33B40Eu);
    EXPECT_EQ(Tuple(Ints({0})).Hash(), 0xEF312FCFu);
    // A tuple inside a tuple brings its own hash.
    EXPECT_EQ(Of({DataValue(makeRefCnt<Tuple>(Ints({42}))), DataValue::FromDouble(1.5)}).Hash(), 0x31458029u);
}

TEST(Tuple, SetDataValueForgetsTheHash)
{
    Tuple a(Ints({1, 2, 3}));
    EXPECT_EQ(a.Hash(), 0x9320F5B6u);
    a.SetDataValue(2, DataValue(4));
    EXPECT_EQ(a.Hash(), Tuple(Ints({1, 2, 4})).Hash());
    EXPECT_NE(a, Tuple(Ints({1, 2, 3})));
    EXPECT_EQ(a.GetDataValue(2), DataValue(4));
    // Back to the old member, back to the old hash.
    a.SetDataValue(2, DataValue(3));
    EXPECT_EQ(a.Hash(), 0x9320F5B6u);
    EXPECT_EQ(a, Tuple(Ints({1, 2, 3})));
}

// --- Equality and order

TEST(Tuple, EqualityIsMemberWise)
{
    EXPECT_EQ(Tuple(), Tuple());
    Tuple filled(2);
    filled.SetDataValue(0, DataValue(1));
    filled.SetDataValue(1, DataValue(2));
    EXPECT_EQ(filled, Tuple(Ints({1, 2})));
    EXPECT_EQ(filled.Hash(), Tuple(Ints({1, 2})).Hash());

    EXPECT_NE(Tuple(Ints({1, 2})), Tuple(Ints({2, 1})));
    EXPECT_NE(Tuple(Ints({1})), Tuple(Ints({1, 1})));
    EXPECT_NE(Tuple(), Tuple(1));
    // Members follow DataValue: 1 is not 1.0, a NaN equals a NaN with the same bits, and
    // decimals play no part in a real's equality.
    EXPECT_NE(Tuple(Ints({1})), Of({DataValue::FromDouble(1.0)}));
    EXPECT_EQ(Of({kNaN}), Of({kNaN}));
    EXPECT_EQ(Of({DataValue(1.5, 6, 2)}), Of({DataValue::FromDouble(1.5)}));
}

TEST(Tuple, TheShorterIsLessThenMemberByMember)
{
    const std::pair<Tuple, Tuple> ordered[] = {
        {Tuple(Ints({1000})), Tuple(Ints({1, 2}))}, // the shorter whatever its members
        {Tuple(), Tuple(1)},
        {Tuple(Ints({9, 9})), Tuple(3)},
        {Tuple(Ints({1, 5})), Tuple(Ints({2, 0}))},
        {Tuple(Ints({1, 2, 3})), Tuple(Ints({1, 2, 4}))},
        {Of({DataValue(Special::Null, DataType::Integer)}), Tuple(Ints({-5}))}, // null below its type
        {Of({kNaN, DataValue(1)}), Of({kNaN, DataValue(2)})}, // unordered members: the next decides
    };
    for (size_t i = 0; i < std::size(ordered); ++i) {
        SCOPED_TRACE(i);
        const Tuple &lesser = ordered[i].first, &greater = ordered[i].second;
        EXPECT_TRUE(lesser < greater);
        EXPECT_FALSE(greater < lesser);
        EXPECT_NE(lesser, greater);
    }
    // 1 and 1.0 are neither equal nor ordered; equal tuples are not less.
    EXPECT_FALSE(Tuple(Ints({1})) < Of({DataValue::FromDouble(1.0)}));
    EXPECT_FALSE(Of({DataValue::FromDouble(1.0)}) < Tuple(Ints({1})));
    EXPECT_FALSE(Tuple(Ints({1, 2})) < Tuple(Ints({1, 2})));
    EXPECT_FALSE(Tuple() < Tuple());
}

// --- Visiting and text

TEST(Tuple, TheInspectorSeesTheMembersInOrder)
{
    const Tuple t = Of({DataValue(7), DataValue(true), DataValue(Special::Missing, DataType::Date),
                        DataValue(makeRefCnt<Tuple>(Ints({1, 2})))});
    TestSupport::RecordingInspector inspector;
    t.Accept(inspector);
    EXPECT_EQ(inspector.calls, (std::vector<std::string>{"int 7", "bool true", "special 9 of 5", "tuple of 2"}));
    TestSupport::RecordingInspector none;
    Tuple().Accept(none);
    EXPECT_TRUE(none.calls.empty());
}

TEST(Tuple, StreamsAndListsOfTuples)
{
    std::ostringstream out, empty, list, broken;
    out << Of({DataValue(42), DataValue::FromDouble(2.5), DataValue()});
    EXPECT_EQ(out.str(), "\"42\",\"2.5\",\"NULL\"");
    empty << Tuple();
    EXPECT_EQ(empty.str(), "");

    using List = std::vector<RefCntPtr<Tuple>>;
    const List a = {makeRefCnt<Tuple>(Ints({1})), makeRefCnt<Tuple>(Ints({2, 3}))};
    list << a;
    EXPECT_EQ(list.str(), "\"1\",\"2\",\"3\"");
    EXPECT_TRUE(a == (List{makeRefCnt<Tuple>(Ints({1})), makeRefCnt<Tuple>(Ints({2, 3}))})); // other objects
    EXPECT_FALSE(a == (List{makeRefCnt<Tuple>(Ints({1})), makeRefCnt<Tuple>(Ints({2, 4}))}));
    EXPECT_FALSE(a == List{a[0]});
    EXPECT_TRUE(List() == List());
    // A null entry is a logic error.
    const List withNull = {makeRefCnt<Tuple>(Ints({1})), nullptr};
    EXPECT_THROW(broken << withNull, LogicException);
    EXPECT_THROW((void)(a == withNull), LogicException);
    EXPECT_THROW((void)(withNull == withNull), LogicException);
}

// --- Threads

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
                if (shared->Hash() != 0x9320F5B6u || !(*shared == *twin))
                    ++wrong;
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(wrong.load(), 0) << round;
    }
}
