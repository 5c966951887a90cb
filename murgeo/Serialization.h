#pragma once

#include "murgeo/Spatial.h"

#include <string>

namespace murgeo {

/// How a reader assigns the kind of what it reads.
enum class CoordinateType : unsigned char
{
    Geography = 1,
    Geometry = 2,
    /// Geography when every coordinate is a valid longitude (-180 to 180) and latitude
    /// (-90 to 90), geometry otherwise; an empty shape is a geography.
    Automatic = 3,
};

/// Well-known text.
class MURGEO_EXPORT WktSerialization
{
public:
    /// The shape of `text`, or null when the text is not well-known text.
    static SpatialPtr Read(const std::string& text, CoordinateType type);
    static SpatialPtr Read(const std::string& text, int type) { return Read(text, CoordinateType(type)); }
    /// The text of a shape. A negative precision writes each coordinate with the fewest
    /// digits that read back to the same double; 0 to 16 round to that many decimals.
    /// An unknown object gives the empty text.
    static std::string Write(const Spatial& spatial, signed char precision);
};

/// GeoJSON: a geometry object, or a Feature or FeatureCollection whose geometries are read.
class MURGEO_EXPORT GeoJSONSerialization
{
public:
    /// The shape of `text`, or null. `geographyOnly` non-zero reads every shape as a
    /// geography, as GeoJSON coordinates are longitude and latitude; zero lets the
    /// coordinates decide, as `CoordinateType::Automatic` does.
    static SpatialPtr Read(const std::string& text, unsigned char geographyOnly);
};

} // namespace murgeo
