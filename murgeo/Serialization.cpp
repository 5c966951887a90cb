#include "murgeo/Serialization.h"

#include "murgeo/GeosContext.h"

#include <cmath>

namespace murgeo {

namespace {

bool IsLonLat(GEOSContextHandle_t ctx, const GEOSGeometry* g)
{
    if (GEOSisEmpty_r(ctx, g) == 1)
        return true;
    double xmin = 0, xmax = 0, ymin = 0, ymax = 0;
    if (GEOSGeom_getXMin_r(ctx, g, &xmin) == 0 || GEOSGeom_getXMax_r(ctx, g, &xmax) == 0 ||
        GEOSGeom_getYMin_r(ctx, g, &ymin) == 0 || GEOSGeom_getYMax_r(ctx, g, &ymax) == 0)
        return false;
    return xmin >= -180.0 && xmax <= 180.0 && ymin >= -90.0 && ymax <= 90.0;
}

SpatialPtr Wrap(GEOSContextHandle_t ctx, GEOSGeometry* g, CoordinateType type)
{
    if (g == nullptr)
        return nullptr;
    SpatialKind kind = SpatialKind::Geometry;
    if (type == CoordinateType::Geography)
        kind = SpatialKind::Geography;
    else if (type == CoordinateType::Automatic)
        kind = IsLonLat(ctx, g) ? SpatialKind::Geography : SpatialKind::Geometry;
    else if (type != CoordinateType::Geometry) {
        GEOSGeom_destroy_r(ctx, g);
        return nullptr;
    }
    return SpatialPtr(new Spatial(kind, g));
}

} // namespace

SpatialPtr WktSerialization::Read(const std::string& text, CoordinateType type)
{
    GEOSContextHandle_t ctx = detail::GeosContext();
    GEOSWKTReader* reader = GEOSWKTReader_create_r(ctx);
    if (reader == nullptr)
        return nullptr;
    // GEOS reads up to a NUL; text with one inside is not well-known text.
    GEOSGeometry* g = text.find('\0') == std::string::npos ? GEOSWKTReader_read_r(ctx, reader, text.c_str()) : nullptr;
    GEOSWKTReader_destroy_r(ctx, reader);
    return Wrap(ctx, g, type);
}

std::string WktSerialization::Write(const Spatial& spatial, signed char precision)
{
    if (spatial.GetGeometry() == nullptr)
        return std::string();
    GEOSContextHandle_t ctx = detail::GeosContext();
    GEOSWKTWriter* writer = GEOSWKTWriter_create_r(ctx);
    if (writer == nullptr)
        return std::string();
    GEOSWKTWriter_setTrim_r(ctx, writer, 1);
    GEOSWKTWriter_setOld3D_r(ctx, writer, 0);
    GEOSWKTWriter_setOutputDimension_r(ctx, writer, 3);
    GEOSWKTWriter_setRoundingPrecision_r(ctx, writer, precision < 0 ? 17 : int(precision));
    char* text = GEOSWKTWriter_write_r(ctx, writer, spatial.GetGeometry());
    std::string out = text ? std::string(text) : std::string();
    if (text != nullptr)
        GEOSFree_r(ctx, text);
    GEOSWKTWriter_destroy_r(ctx, writer);
    return out;
}

SpatialPtr GeoJSONSerialization::Read(const std::string& text, unsigned char geographyOnly)
{
    GEOSContextHandle_t ctx = detail::GeosContext();
    GEOSGeoJSONReader* reader = GEOSGeoJSONReader_create_r(ctx);
    if (reader == nullptr)
        return nullptr;
    GEOSGeometry* g =
        text.find('\0') == std::string::npos ? GEOSGeoJSONReader_readGeometry_r(ctx, reader, text.c_str()) : nullptr;
    GEOSGeoJSONReader_destroy_r(ctx, reader);
    return Wrap(ctx, g, geographyOnly ? CoordinateType::Geography : CoordinateType::Automatic);
}

} // namespace murgeo
