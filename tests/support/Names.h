// Short names that the tests use throughout.
#pragma once

#include <QString>

#include <filesystem>

namespace fs = std::filesystem;

using namespace Qt::StringLiterals;
