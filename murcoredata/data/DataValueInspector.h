#pragma once

#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/RefCnt.h"

#include <cstdint>
#include <memory>

// The visitor of a `DataValue`: `DataValue::Accept` calls exactly one of these operations
// (or none, see below), chosen by the value's special and type, and the inspector keeps
// whatever it makes of it. Nothing here is virtual on the value side, so a visit is one
// switch and one virtual call.
//
// A special value of any type goes to `InspectSpecial` and nowhere else. Unknown and
// Binary values call nothing: there is deliberately no operation for binary objects, and
// an inspector that must treat them has to look at the value itself.

class DateTime;
class Time;
class Collation;
class TString;
class Tuple;
namespace murgeo {
class Spatial;
}

enum class DataType : uint8_t;
namespace DataValueTypes {
enum class Special : int8_t;
}

/// Abstract visitor of a `DataValue`. The order of the operations is part of the interface.
class MURCOREDATA_EXPORT DataValueInspector
{
public:
    virtual ~DataValueInspector();

    /// Any value whose special is not `None`, with the type it is a special of.
    virtual void InspectSpecial(DataValueTypes::Special special, DataType type) = 0;
    virtual void InspectBool(bool value) = 0;
    virtual void InspectInt(long long value) = 0;
    /// `precision` and `scale` as stored: -1 when absent.
    virtual void InspectReal(double value, signed char precision, signed char scale) = 0;
    virtual void InspectDate(DateTime value) = 0;
    virtual void InspectDatetime(DateTime value) = 0;
    virtual void InspectTime(Time value) = 0;
    virtual void InspectString(const Collation& collation, const TString& text) = 0;
    /// A new counted pointer to the value's tuple; the tuple is shared, not copied.
    virtual void InspectTuple(RefCntPtr<Tuple, RefCntObject> tuple) = 0;
    /// A copy of the value's pointer; empty when the value holds no object.
    virtual void InspectSpatial(std::shared_ptr<const murgeo::Spatial> spatial) = 0;
};
