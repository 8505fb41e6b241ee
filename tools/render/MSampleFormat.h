// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// How samples stand in a WAV file.
enum class MSampleFormat : int { Pcm16 = 16, Pcm24 = 24, Float32 = 32 };
