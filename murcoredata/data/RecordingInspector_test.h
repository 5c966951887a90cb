#pragma once

// Test support: a DataValueInspector that writes down every call it receives as one line of
// text, so that a test can compare the whole sequence of visits with what it expects.

#include "murcoredata/data/Collation.h"
#include "murcoredata/data/DataValue.h"
#include "murcoredata/data/DataValueInspector.h"
#include "murcoredata/data/Tuple.h"
#include "murgeo/Spatial.h"

#include <string>
#include <vector>

namespace TestSupport {

class RecordingInspector : public DataValueInspector
{
public:
    std::vector<std::string> calls;
    // What the pointer-carrying operations received, for identity checks.
    std::vector<RefCntPtr<Tuple, RefCntObject>> tuples;
    std::vector<std::shared_ptr<const murgeo::Spatial>> spatials;

    void InspectSpecial(DataValueTypes::Special special, DataType type) override
    {
        calls.push_back("special " + std::to_string(int(special)) + " of " + std::to_string(int(type)));
    }
    void InspectBool(bool value) override { calls.push_back(value ? "bool true" : "bool false"); }
    void InspectInt(long long value) override { calls.push_back("int " + std::to_string(value)); }
    void InspectReal(double value, signed char precision, signed char scale) override
    {
        calls.push_back("real " + std::to_string(value) + " " + std::to_string(int(precision)) + " " +
                        std::to_string(int(scale)));
    }
    void InspectDate(DateTime value) override { calls.push_back("date " + std::to_string(value.GetRepresentation())); }
    void InspectDatetime(DateTime value) override
    {
        calls.push_back("datetime " + std::to_string(value.GetRepresentation()));
    }
    void InspectTime(Time value) override { calls.push_back("time " + std::to_string(value.GetRepresentation())); }
    void InspectString(const Collation& collation, const TString& text) override
    {
        calls.push_back("string " + text.toStdString() + " / " + collation.GetName().toStdString());
    }
    void InspectTuple(RefCntPtr<Tuple, RefCntObject> tuple) override
    {
        calls.push_back("tuple of " + std::to_string(tuple ? int(tuple->GetSize()) : -1));
        tuples.push_back(std::move(tuple));
    }
    void InspectSpatial(std::shared_ptr<const murgeo::Spatial> spatial) override
    {
        calls.push_back(spatial ? "spatial " + murgeo::to_string(spatial->GetShapeType()) : "spatial none");
        spatials.push_back(std::move(spatial));
    }
};

} // namespace TestSupport
