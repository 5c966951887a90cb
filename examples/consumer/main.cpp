// Links against the installed library and uses a little of it.
#include "murcoredata/murcoredata.h"

#include <cstdio>

int main()
{
    const TString text = CoreData::LookupTStr(CoreData::IDS_ERR_EXPECT_DOT);
    const unsigned hash = THash32(text.constData(), text.lengthInBytes(), 0xDEADBEEFu);
    std::printf("consumer: \"%s\" hash %08X\n", text.toStdString().c_str(), hash);
    return text.isEmpty() ? 1 : 0;
}
