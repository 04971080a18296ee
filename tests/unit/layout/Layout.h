/**
 * @file
 * Expectations of the layout of records. The tests are compiled both with the platform's own headers and with
 * those of sdk_subset, which must not differ.
 */
#pragma once

#include <gtest/gtest.h>

#include <cstddef>

#define EXPECT_SIZE(record, size) EXPECT_EQ(sizeof(record), std::size_t{size})
#define EXPECT_OFFSET(record, member, offset) EXPECT_EQ(offsetof(record, member), std::size_t{offset})
