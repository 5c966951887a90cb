#include "murgeo/BasicServices.h"
#include "murgeo/Serialization.h"
#include "murgeo/Spatial.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <thread>
#include <vector>

using namespace murgeo;

TEST(MurgeoWkt, ReadsKindsAndWritesBack)
{
    struct Row
    {
        const char* text;
        int type;
        SpatialKind kind;
        ShapeType shape;
        const char* written;
    } rows[] = {
        {"POINT (1 2)", 2, SpatialKind::Geometry, ShapeType::Point, "POINT (1 2)"},
        {"POINT (1 2)", 3, SpatialKind::Geography, ShapeType::Point, "POINT (1 2)"},
        {"POINT (500 2)", 3, SpatialKind::Geometry, ShapeType::Point, "POINT (500 2)"},
        {"POINT (10 95)", 3, SpatialKind::Geometry, ShapeType::Point, "POINT (10 95)"},
        {"POINT Z (1 2 3)", 2, SpatialKind::Geometry, ShapeType::Point, "POINT Z (1 2 3)"},
        {"LINESTRING (0 0, 1 1.5)", 2, SpatialKind::Geometry, ShapeType::LineString, "LINESTRING (0 0, 1 1.5)"},
        {"POLYGON ((0 0, 4 0, 4 4, 0 0))", 3, SpatialKind::Geography, ShapeType::Polygon, "POLYGON ((0 0, 4 0, 4 4, 0 0))"},
        {"MULTIPOINT ((1 2), (3 4))", 2, SpatialKind::Geometry, ShapeType::MultiPoint, "MULTIPOINT (1 2, 3 4)"},
        {"GEOMETRYCOLLECTION EMPTY", 3, SpatialKind::Geography, ShapeType::GeometryCollection, "GEOMETRYCOLLECTION EMPTY"},
        {"POINT (0.1 -0.30000000000000004)", 2, SpatialKind::Geometry, ShapeType::Point, "POINT (0.1 -0.30000000000000004)"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.text);
        SpatialPtr s = WktSerialization::Read(r.text, r.type);
        ASSERT_TRUE(s);
        EXPECT_EQ(s->GetKind(), r.kind);
        EXPECT_EQ(s->GetShapeType(), r.shape);
        EXPECT_EQ(WktSerialization::Write(*s, -2), r.written);
    }
    EXPECT_EQ(to_string(ShapeType::MultiPolygon), "MultiPolygon");
    EXPECT_EQ(to_string(ShapeType::None), "None");
    EXPECT_EQ(to_string(ShapeType(99)), "None");
}

TEST(MurgeoWkt, BadTextGivesNull)
{
    const std::string hostile[] = {"", "POINT", "POINT (1)", "POINT (1 2", "LINESTRING (0 0)", "POLYGON ((0 0, 1 1))",
                                   "CIRCLE (1 2)", std::string("POINT (1 2)\0 x", 14), "(((((((",
                                   "POINT (nan nan", "\xff\xfe", "MULTIPOLYGON (((0 0, 1 0, 0 1, 0 0)), (("};
    for (const std::string& text : hostile) {
        EXPECT_EQ(WktSerialization::Read(text, 3), nullptr) << text;
    }
    EXPECT_EQ(WktSerialization::Read("POINT (1 2)", 9), nullptr); // no such coordinate type
    std::mt19937 random(7);
    const char alphabet[] = "POINTLESGYMUC ()0123456789.,-EZe";
    for (int i = 0; i < 2000; ++i) {
        std::string text;
        const int n = int(random() % 40);
        for (int j = 0; j < n; ++j)
            text += alphabet[random() % (sizeof alphabet - 1)];
        SpatialPtr s = WktSerialization::Read(text, 3); // must not crash; either answer is fine
        if (s) {
            EXPECT_FALSE(s->IsUnknown());
        }
    }
}

TEST(MurgeoSpatial, EqualityAndHashFollowKindAndCoordinates)
{
    SpatialPtr a = WktSerialization::Read("POINT (1 2)", 2);
    SpatialPtr b = WktSerialization::Read("POINT(1.0 2.0)", 2);
    SpatialPtr c = WktSerialization::Read("POINT (1 2)", 3);
    SpatialPtr d = WktSerialization::Read("POINT (2 1)", 2);
    EXPECT_TRUE(*a == *b);
    EXPECT_EQ(a->GetHash(), b->GetHash());
    EXPECT_FALSE(*a == *c); // same coordinates, other kind
    EXPECT_NE(a->GetHash(), c->GetHash());
    EXPECT_FALSE(*a == *d);
    EXPECT_NE(a->GetHash(), d->GetHash());

    SpatialPtr g = DefaultGeometry();
    SpatialPtr h = DefaultGeography();
    EXPECT_TRUE(g->IsGeometry() && g->IsEmpty());
    EXPECT_TRUE(h->IsGeography() && h->IsEmpty());
    EXPECT_FALSE(*g == *h);
    EXPECT_TRUE(*DefaultGeometry() == *g);

    Spatial unknown(SpatialKind::Geometry, nullptr);
    EXPECT_TRUE(unknown.IsUnknown());
    EXPECT_TRUE(unknown.IsEmpty());
    EXPECT_EQ(unknown.GetShapeType(), ShapeType::None);
    EXPECT_EQ(WktSerialization::Write(unknown, -2), "");
}

TEST(MurgeoGeoJson, ReadsGeometriesAndFeatures)
{
    SpatialPtr p = GeoJSONSerialization::Read(R"({"type":"Point","coordinates":[100.5,0.25]})", 0);
    ASSERT_TRUE(p);
    EXPECT_TRUE(p->IsGeography());
    EXPECT_EQ(WktSerialization::Write(*p, -2), "POINT (100.5 0.25)");
    SpatialPtr far = GeoJSONSerialization::Read(R"({"type":"Point","coordinates":[1000,0]})", 0);
    ASSERT_TRUE(far);
    EXPECT_TRUE(far->IsGeometry());
    SpatialPtr forced = GeoJSONSerialization::Read(R"({"type":"Point","coordinates":[1000,0]})", 1);
    EXPECT_TRUE(forced->IsGeography());
    SpatialPtr feature = GeoJSONSerialization::Read(
        R"({"type":"Feature","properties":{"n":1},"geometry":{"type":"LineString","coordinates":[[0,0],[1,1]]}})", 0);
    ASSERT_TRUE(feature);
    EXPECT_EQ(feature->GetShapeType(), ShapeType::LineString);
    for (const char* bad : {"", "{", "{\"type\":\"Point\"}", "[1,2]", "{\"type\":\"Circle\",\"coordinates\":[1,2]}", "null"})
        EXPECT_EQ(GeoJSONSerialization::Read(bad, 0), nullptr) << bad;
}

TEST(MurgeoSpatial, SharedShapesAreReadFromManyThreads)
{
    std::shared_ptr<const Spatial> shared(WktSerialization::Read("POLYGON ((0 0, 10 0, 10 10, 0 0))", 2).release(),
                                          SpatialDeleter());
    const uint32_t hash = shared->GetHash();
    const std::string text = WktSerialization::Write(*shared, -2);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                std::shared_ptr<const Spatial> copy = shared;
                EXPECT_EQ(copy->GetHash(), hash);
                EXPECT_EQ(WktSerialization::Write(*copy, -2), text);
                SpatialPtr mine = WktSerialization::Read(text, 2);
                EXPECT_TRUE(*mine == *copy);
            }
        });
    for (auto& t : threads)
        t.join();
}

TEST(MurgeoBasicServices, RegistrationNestsAndKeepsTheDirectory)
{
    EXPECT_FALSE(BasicServices::IsRegistered());
    BasicServices::Register();
    BasicServices::Register();
    BasicServices::SetProjResourceDirectory("/usr/share/proj");
    BasicServices::Unregister();
    EXPECT_TRUE(BasicServices::IsRegistered());
    BasicServices::Unregister();
    BasicServices::Unregister(); // one too many does not go below zero
    EXPECT_FALSE(BasicServices::IsRegistered());
    EXPECT_EQ(BasicServices::GetProjResourceDirectory(), "/usr/share/proj");
}
