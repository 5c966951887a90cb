#pragma once

#include "murgeo/Export.h"

#include <cstdint>
#include <memory>
#include <string>

struct GEOSGeom_t;

namespace murgeo {

/// Whether the coordinates of a shape are planar (geometry) or longitude/latitude
/// degrees on the sphere (geography).
enum class SpatialKind : int
{
    Unknown = 0,
    Geometry = 1,
    Geography = 2,
};

/// The kind of shape; 0 means no shape at all.
enum class ShapeType : int
{
    None = 0,
    Point = 1,
    LineString = 2,
    Polygon = 3,
    MultiPoint = 4,
    MultiLineString = 5,
    MultiPolygon = 6,
    GeometryCollection = 7,
};

/// "Point", "LineString", ... and "None" for no shape.
MURGEO_EXPORT std::string to_string(ShapeType type);

/// An immutable shape with its kind. Made by the readers and the Default... functions and
/// shared as `std::shared_ptr<const Spatial>`; any thread may read it at once.
class MURGEO_EXPORT Spatial
{
public:
    /// Takes ownership of `geometry` (may be null for an unknown object).
    Spatial(SpatialKind kind, GEOSGeom_t* geometry);
    virtual ~Spatial();
    Spatial(const Spatial&) = delete;
    Spatial& operator=(const Spatial&) = delete;

    SpatialKind GetKind() const { return m_kind; }
    bool IsGeometry() const { return m_kind == SpatialKind::Geometry; }
    bool IsGeography() const { return m_kind == SpatialKind::Geography; }
    bool IsUnknown() const { return m_kind == SpatialKind::Unknown; }
    /// True for an object with no coordinates (and for an unknown object).
    bool IsEmpty() const;

    virtual ShapeType GetShapeType() const;

    /// XXH32 of the shape's ISO well-known binary (little-endian, with Z where the shape has
    /// it), seeded with 0xDEADBEEF plus the kind. Equal objects hash alike.
    uint32_t GetHash() const { return m_hash; }

    /// Same kind and the same coordinates in the same structure, compared exactly.
    bool operator==(const Spatial& other) const;
    bool operator!=(const Spatial& other) const { return !(*this == other); }

    /// The shape, for the serialisers; owned by this object.
    const GEOSGeom_t* GetGeometry() const { return m_geometry; }

private:
    SpatialKind m_kind;
    GEOSGeom_t* m_geometry;
    std::string m_wkb; // the canonical bytes behind hash and equality
    uint32_t m_hash;
};

/// Deletes a `Spatial` inside the library that made it.
struct MURGEO_EXPORT SpatialDeleter
{
    void operator()(Spatial* spatial) const;
};

using SpatialPtr = std::unique_ptr<Spatial, SpatialDeleter>;

/// An empty geometry and an empty geography (an empty collection of each kind).
MURGEO_EXPORT SpatialPtr DefaultGeometry();
MURGEO_EXPORT SpatialPtr DefaultGeography();

} // namespace murgeo
