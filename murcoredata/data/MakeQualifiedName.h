#pragma once

// Free helpers that make one qualified name from another: local (without the root) and
// global (with a root in front) forms, and copies with the leaf or root replaced.

#include "murcoredata/data/QualifiedName.h"

/// No components: the empty name; one component: the name unchanged; more: without the root.
MURCOREDATA_EXPORT QualifiedName MakeLocalName(const QualifiedName& name);
/// Drops the root of the moved-in name. Unlike the const form, one component gives the name
/// with no components.
MURCOREDATA_EXPORT QualifiedName MakeLocalName(QualifiedName&& name);
/// `root` gets the root (cleared when there is none); the result is the rest, so one
/// component gives the name with no components.
MURCOREDATA_EXPORT QualifiedName MakeLocalName(const QualifiedName& name, TString& root);

/// `root` in front of `name`.
MURCOREDATA_EXPORT QualifiedName MakeGlobalName(TString root, const QualifiedName& name);
MURCOREDATA_EXPORT QualifiedName MakeGlobalName(TString root, QualifiedName&& name);

/// A copy with the leaf replaced; a logic assertion when `name` has no components.
MURCOREDATA_EXPORT QualifiedName ReplaceValue(const QualifiedName& name, TString value);
/// A copy with the root replaced; a logic assertion when `name` has no components.
MURCOREDATA_EXPORT QualifiedName ReplaceRoot(const QualifiedName& name, TString value);
/// A copy with a leaf added.
MURCOREDATA_EXPORT QualifiedName PushValue(const QualifiedName& name, TString value);
