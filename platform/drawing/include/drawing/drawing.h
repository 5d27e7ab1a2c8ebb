// SPDX-License-Identifier: MIT
// The whole drawing layer in one include.
#pragma once

#include "drawing/blockreference.h"
#include "drawing/curves.h"
#include "drawing/database.h"
#include "drawing/reader.h"
#include "drawing/report.h"
#include "drawing/wildcard.h"
