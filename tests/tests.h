#pragma once

// What nearly every test reads, precompiled.
#include "tests/support/TestStation.h"

#include <QtTest>
#include <QtWidgets>
#include <gtest/gtest.h>
