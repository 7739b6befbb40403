// The product's version, as the build has it. Any thread.
#pragma once

#include <QString>

/// "0.6.0"
[[nodiscard]] QString productVersion();
/// Without its last number: "0.6".
[[nodiscard]] QString shortProductVersion();
