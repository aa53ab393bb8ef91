#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QObject>

#include "base/Animation.h"

namespace quorvane {

/// A number and how it is to be reached, on its way from the controller to whoever draws it. QML
/// only hands it on.
struct AnimatedNumber {
    Q_GADGET
    QML_VALUE_TYPE(animatedNumber)

public:
    AnimatedValue value;

    bool operator==(const AnimatedNumber&) const = default;
};

} // namespace quorvane
