// Precompiled for the rooms with widgets.
#include "pch_core.h"

#include <QtWidgets>
