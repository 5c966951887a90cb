#pragma once

// Test support: runs code that must throw a MurvaneException and gives back a clone of what
// it threw, with its dynamic type, so that a test can check message, code and source.

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <memory>

namespace TestSupport {

template <typename F>
std::unique_ptr<MurvaneException> Caught(F&& f)
{
    try {
        f();
    } catch (const MurvaneException& e) {
        return std::unique_ptr<MurvaneException>(e.Clone());
    }
    ADD_FAILURE() << "no exception";
    return std::make_unique<MurvaneException>(TStringCore());
}

} // namespace TestSupport
