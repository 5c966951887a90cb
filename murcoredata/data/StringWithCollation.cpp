#include "murcoredata/data/StringWithCollation.h"

#include <utility>

StringWithCollation::StringWithCollation(const TString& text, const Collation& collation)
    : m_text(text), m_collation(collation)
{
}

StringWithCollation::StringWithCollation(TString&& text, Collation&& collation)
    : m_text(std::move(text)), m_collation(std::move(collation))
{
}

// The base is default-constructed on purpose: a copy is a new, unshared object.
StringWithCollation::StringWithCollation(const StringWithCollation& other)
    : RefCntObject(), m_hash(other.m_hash.load()), m_text(other.m_text), m_collation(other.m_collation)
{
}

StringWithCollation::StringWithCollation(StringWithCollation&& other)
    : RefCntObject(), m_hash(other.m_hash.load()), m_text(std::move(other.m_text)),
      m_collation(std::move(other.m_collation))
{
}

StringWithCollation& StringWithCollation::operator=(const StringWithCollation& other)
{
    if (this != &other) {
        m_text = other.m_text;
        m_collation = other.m_collation;
        m_hash.store(other.m_hash.load());
    }
    return *this;
}

StringWithCollation& StringWithCollation::operator=(StringWithCollation&& other)
{
    if (this != &other) {
        m_text = std::move(other.m_text);
        m_collation = std::move(other.m_collation);
        m_hash.store(other.m_hash.load());
    }
    return *this;
}

StringWithCollation::~StringWithCollation() = default;

unsigned int StringWithCollation::ComputeHash() const
{
    // Racing threads compute the same number; whichever store lands last is as good.
    m_hash.store(m_collation.Hash(m_text.constData()));
    return m_hash.load();
}

bool StringWithCollation::EqualByCollation(const StringWithCollation& a, const StringWithCollation& b)
{
    if (!a.m_collation.IsEquivalent(b.m_collation))
        return false;
    return a.m_collation.Compare(a.m_text.constData(), b.m_text.constData()) == 0;
}

bool operator<(const StringWithCollation& a, const StringWithCollation& b)
{
    const Collation& collation = a.GetCollation();
    if (!Equivalent(collation, b.GetCollation()))
        return collation < b.GetCollation();
    return collation.Compare(a.GetString().constData(), b.GetString().constData()) < 0;
}
