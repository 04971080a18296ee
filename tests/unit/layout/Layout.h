/**
 * @file
 * Expectations of records. The tests that use them are compiled with the platform's own headers and with
 * our declarations of them, so that neither can stray from the other.
 */
#pragma once

#include <gtest/gtest.h>

#include <cstddef>

#define EXPECT_SIZE(record, size) EXPECT_EQ(sizeof(record), std::size_t{size})
#define EXPECT_OFFSET(record, member, offset) EXPECT_EQ(offsetof(record, member), std::size_t{offset})
