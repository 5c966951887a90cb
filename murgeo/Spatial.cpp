#include "murgeo/Spatial.h"

#include "murgeo/GeosContext.h"

#include <xxhash.h>


namespace murgeo {
namespace detail {

namespace {

struct ThreadContext
{
    GEOSContextHandle_t handle;
    std::string lastError;

    ThreadContext() : handle(GEOS_init_r())
    {
        GEOSContext_setErrorMessageHandler_r(handle, &OnError, this);
        GEOSContext_setNoticeMessageHandler_r(handle, &OnNotice, nullptr);
    }
    ~ThreadContext() { GEOS_finish_r(handle); }

    static void OnError(const char* message, void* self)
    {
        static_cast<ThreadContext*>(self)->lastError = message ? message : "";
    }
    static void OnNotice(const char*, void*) {}
};

ThreadContext& Current()
{
    thread_local ThreadContext context;
    return context;
}

} // namespace

GEOSContextHandle_t GeosContext()
{
    return Current().handle;
}

const std::string& LastGeosError()
{
    return Current().lastError;
}

void ClearGeosError()
{
    Current().lastError.clear();
}

} // namespace detail

namespace {

// ISO WKB, little-endian, keeping Z: the canonical bytes of a shape.
std::string CanonicalBytes(const GEOSGeometry* geometry)
{
    if (geometry == nullptr)
        return std::string();
    GEOSContextHandle_t ctx = detail::GeosContext();
    GEOSWKBWriter* writer = GEOSWKBWriter_create_r(ctx);
    if (writer == nullptr)
        return std::string();
    GEOSWKBWriter_setOutputDimension_r(ctx, writer, 3);
    GEOSWKBWriter_setByteOrder_r(ctx, writer, GEOS_WKB_NDR);
    GEOSWKBWriter_setFlavor_r(ctx, writer, GEOS_WKB_ISO);
    size_t size = 0;
    unsigned char* bytes = GEOSWKBWriter_write_r(ctx, writer, geometry, &size);
    std::string out;
    if (bytes != nullptr) {
        out.assign(reinterpret_cast<const char*>(bytes), size);
        GEOSFree_r(ctx, bytes);
    }
    GEOSWKBWriter_destroy_r(ctx, writer);
    return out;
}

} // namespace

std::string to_string(ShapeType type)
{
    switch (type) {
    case ShapeType::Point: return "Point";
    case ShapeType::LineString: return "LineString";
    case ShapeType::Polygon: return "Polygon";
    case ShapeType::MultiPoint: return "MultiPoint";
    case ShapeType::MultiLineString: return "MultiLineString";
    case ShapeType::MultiPolygon: return "MultiPolygon";
    case ShapeType::GeometryCollection: return "GeometryCollection";
    case ShapeType::None: break;
    }
    return "None";
}

Spatial::Spatial(SpatialKind kind, GEOSGeom_t* geometry)
    : m_kind(geometry ? kind : SpatialKind::Unknown), m_geometry(geometry), m_wkb(CanonicalBytes(geometry)),
      m_hash(XXH32(m_wkb.data(), m_wkb.size(), 0xDEADBEEFu + unsigned(m_kind)))
{
}

Spatial::~Spatial()
{
    if (m_geometry != nullptr)
        GEOSGeom_destroy_r(detail::GeosContext(), m_geometry);
}

bool Spatial::IsEmpty() const
{
    return m_geometry == nullptr || GEOSisEmpty_r(detail::GeosContext(), m_geometry) == 1;
}

ShapeType Spatial::GetShapeType() const
{
    if (m_geometry == nullptr)
        return ShapeType::None;
    switch (GEOSGeomTypeId_r(detail::GeosContext(), m_geometry)) {
    case GEOS_POINT: return ShapeType::Point;
    case GEOS_LINESTRING:
    case GEOS_LINEARRING: return ShapeType::LineString;
    case GEOS_POLYGON: return ShapeType::Polygon;
    case GEOS_MULTIPOINT: return ShapeType::MultiPoint;
    case GEOS_MULTILINESTRING: return ShapeType::MultiLineString;
    case GEOS_MULTIPOLYGON: return ShapeType::MultiPolygon;
    case GEOS_GEOMETRYCOLLECTION: return ShapeType::GeometryCollection;
    default: return ShapeType::None;
    }
}

bool Spatial::operator==(const Spatial& other) const
{
    if (this == &other)
        return true;
    return m_kind == other.m_kind && m_hash == other.m_hash && m_wkb == other.m_wkb;
}

void SpatialDeleter::operator()(Spatial* spatial) const
{
    delete spatial;
}

namespace {

SpatialPtr EmptyOfKind(SpatialKind kind)
{
    GEOSGeometry* empty = GEOSGeom_createEmptyCollection_r(detail::GeosContext(), GEOS_GEOMETRYCOLLECTION);
    return SpatialPtr(new Spatial(kind, empty));
}

} // namespace

SpatialPtr DefaultGeometry()
{
    return EmptyOfKind(SpatialKind::Geometry);
}

SpatialPtr DefaultGeography()
{
    return EmptyOfKind(SpatialKind::Geography);
}

} // namespace murgeo
