// The model's type as QML knows it; the floors below know nothing of QML.
#pragma once

#include "model/Model.h"

#include <QtQml/qqml.h>

struct MarluneModelType {
    Q_GADGET
    QML_FOREIGN(MarluneModel)
    QML_NAMED_ELEMENT(MarluneModel)
    QML_UNCREATABLE("There is one model, and the program makes it.")
};
