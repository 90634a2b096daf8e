#pragma once

/// Result files in modern C++ (C++17): values that own what they hold, and errors as exceptions. It is written on the
/// classes of orvio.h alone and compiled into the host. What it does not offer is done with those: a file and a writer
/// give out the filer they stand on.
///
///     orv::File file("crash.orv");
///     for (const orv::Values<>& block : file.values("STRESS", {file.last_state()})) {
///       for (std::size_t i = 0; i < block.size(); ++i) std::cout << block.ids[i] << ' ' << block.at(i) << '\n';
///     }
///
/// As the classes below it, it is for one thread at a time.

#include "orvio/orv/buffer.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv/file.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv/writer.hpp"
