#pragma once

#include <QHashFunctions>
#include <QString>

namespace providers {

/// One selectable model of a service: the id that requests carry and the label that people see.
/// The id identifies it in lists and settings; equality compares both fields.
struct ModelOption
{
    QString id;
    QString label;

    friend bool operator==(const ModelOption &, const ModelOption &) = default;
    friend size_t qHash(const ModelOption &option, size_t seed = 0) noexcept
    {
        return qHashMulti(seed, option.id, option.label);
    }
};

} // namespace providers
