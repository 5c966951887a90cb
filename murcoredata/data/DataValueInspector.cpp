#include "murcoredata/data/DataValueInspector.h"

DataValueInspector::~DataValueInspector() = default;
