#include "murcoredata/foundation/MurErrorsError.h"

namespace MurErrorsError {

#define MUR_ERROR(prefix, kind, code)                                                      \
    MurvaneError kind##_##code()                                                           \
    {                                                                                      \
        return MurvaneError::MakeError(code##u, TStringCore(QStringLiteral(#prefix "_" #kind "_" #code))); \
    }
#include "murcoredata/foundation/MurErrorsList.h"
#undef MUR_ERROR

MurvaneError LogicAssert_0x00BF554A()
{
    return MurvaneError::MakeError(0x00BF554Au, TStringCore(QStringLiteral("LogicException_LogicAssert_0x00BF554A")));
}

namespace {
const Entry s_entries[] = {
#define MUR_ERROR(prefix, kind, code) {code##u, #prefix "_" #kind "_" #code},
#include "murcoredata/foundation/MurErrorsList.h"
#undef MUR_ERROR
};
} // namespace

const Entry* GetEntries(size_t* count)
{
    if (count != nullptr)
        *count = sizeof(s_entries) / sizeof(s_entries[0]);
    return s_entries;
}

const Entry* FindByCode(uint32_t code)
{
    for (const Entry& e : s_entries)
        if (e.code == code)
            return &e;
    return nullptr;
}

} // namespace MurErrorsError
