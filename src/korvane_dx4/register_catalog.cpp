// SPDX-License-Identifier: MIT
// Register types and their descriptions, for the host's editor.
#include "driver_api.h"
#include "registers/register_type.h"

using namespace dx4;

namespace {

constexpr int listOfAllTypes = 1;

// Deliberate: "SW" comes before "FRE", other than in REG_LIST.
constexpr RegisterType listedOrder[] = { TypeF, TypeD, TypeCw, TypeSw, TypeFre, TypeFu };

} // namespace

int intf_getRegListByType(int type, QList<QString> *list)
{
    if (type != listOfAllTypes)
        return 0;
    if (list) {
        for (RegisterType listed : listedOrder)
            list->append(REG_LIST[listed]);
    }
    return 1;
}

int intf_getRegDiscription(QString regType, QList<QString> *list)
{
    const RegisterType type = registerType(regType);
    if (type == UnknownType)
        return 0;
    if (list) {
        for (const QString &text : REG_DESCRIPTION[type])
            list->append(text);
    }
    return 1;
}
