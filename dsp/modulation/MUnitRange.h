// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Control values lie within 0..1: what is below, above or no number is brought there. NaN gives 0.
/// [any]
inline double ToUnitRange(double x) noexcept { return x > 0 ? (x < 1 ? x : 1.0) : 0.0; }

/// The way from 0 to 1 that starts and ends flat, for `x` within 0..1. [any]
inline double SmoothStep(double x) noexcept { return x * x * (3 - 2 * x); }
