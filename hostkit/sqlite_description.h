#pragma once

#include "hostkit/driver_description.h"

namespace QB::HostKit {

/// SQLite, through Qt's QSQLITE driver.
const DriverDescription& sqliteDescription();

}  // namespace QB::HostKit
