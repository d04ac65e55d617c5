#pragma once

#include "providers/modeloption.h"

#include <QList>
#include <QString>

namespace providers {

/// One row of the table of services.
struct Service
{
    QString id; ///< Identifier of the provider, of its key and of its settings.
    QString name; ///< As shown to people.
    QString baseUrl; ///< Scheme and authority, without a trailing slash.
    QList<ModelOption> models; ///< In display order; the first is the default.
};

/// Everything about the services that changes when they retire a model or move a host.
struct ServiceTable
{
    Service gemini;
    Service grok;
    Service openai;
};

/// The table this program was built with.
const ServiceTable &services();

} // namespace providers
