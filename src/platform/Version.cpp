#include "platform/Version.h"

QString productVersion()
{
    return QStringLiteral(MARLUNE_VERSION);
}

QString shortProductVersion()
{
    return productVersion().section(u'.', 0, 1);
}
