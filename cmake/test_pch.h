// The heavy headers that nearly every test includes; compiled once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/json.hpp>
