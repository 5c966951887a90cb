#pragma once

// Test support: runs code that must throw a MurvaneException and gives back a clone of what
// it threw, with its dynamic type, so that a test can check message, code and source; and
// checks a logic assertion by its site code and condition text.

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

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

/// The failure must be the logic assertion of that site, with the condition as written.
inline void ExpectLogicFailure(const std::function<void()>& call, uint32_t code, const std::string& condition)
{
    try {
        call();
        ADD_FAILURE() << "expected the assertion " << condition;
    } catch (const LogicException& e) {
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), code) << e.what();
        EXPECT_NE(std::string(e.what()).find("logic assertion failed: " + condition), std::string::npos) << e.what();
    }
}

} // namespace TestSupport
