#include "murcoredata/data/MakeQualifiedName.h"

#include "murcoredata/foundation/MurErrorsError.h"

QualifiedName MakeLocalName(const QualifiedName& name)
{
    // A single component is already local: it is kept, where the other two forms drop it.
    if (name.GetNumberOfComponents() <= 1)
        return name;
    return name.PopRootValue();
}

QualifiedName MakeLocalName(QualifiedName&& name)
{
    QualifiedName local(std::move(name));
    local.PopRoot();
    return local;
}

QualifiedName MakeLocalName(const QualifiedName& name, TString& root)
{
    return name.PopRootValue(root);
}

QualifiedName MakeGlobalName(TString root, const QualifiedName& name)
{
    return name.PushRootValue(std::move(root));
}

QualifiedName MakeGlobalName(TString root, QualifiedName&& name)
{
    QualifiedName global(std::move(name));
    global.PushRoot(std::move(root));
    return global;
}

QualifiedName ReplaceValue(const QualifiedName& name, TString value)
{
    MUR_LOGIC_ASSERT(name.GetNumberOfComponents() > 0, LogicAssert_0x2EC106E1);
    QualifiedName copy(name);
    copy.ReplaceValue(std::move(value));
    return copy;
}

QualifiedName ReplaceRoot(const QualifiedName& name, TString value)
{
    MUR_LOGIC_ASSERT(name.GetNumberOfComponents() > 0, LogicAssert_0xA754925D);
    QualifiedName copy(name);
    copy.ReplaceRoot(std::move(value));
    return copy;
}

QualifiedName PushValue(const QualifiedName& name, TString value)
{
    return name.PushLeafValue(std::move(value));
}
