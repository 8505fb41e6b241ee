// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What the user reads about each record, in the editor's markup.
namespace MDelayHelpTexts {

inline constexpr const char* kDelayMode =
    "<name>Delay mode</name> defines how the separate taps are processed. <value>Serial</value> "
    "mode "
    "produces higher density of echoes when both tap are used, because it makes the second tap "
    "process signal output from the first one.";
inline constexpr const char* kFilterMode =
    "<name>Mode</name> determines which signal is being processing by the bandpass, if enabled. "
    "<value>Input filter</value> makes the filter process the input directly. <value>Feedback "
    "filter</value> performs processing in the feedback loop, which makes every echo processed "
    "once "
    "more. This results in the typical tape sound, where the echoes become less and less similar "
    "to "
    "the original sound due to imperfection of the tape.";
inline constexpr const char* kMinFrequency =
    "<name>Min frequency</name> defines minimal frequency passed into the delay taps.";
inline constexpr const char* kMaxFrequency =
    "<name>Max frequency</name> defines maximal frequency passed into the delay taps.";
inline constexpr const char* kResonance =
    "<name>Resonance</name> defines the bandpass filter resonance.";
inline constexpr const char* kSaturation =
    "<name>Saturation</name> defines amount of saturation applied on the delayed signal. Note that "
    "it "
    "is applied in the feedback, therefore the signal is saturated more and more on each echo.";
inline constexpr const char* kTapPanel =
    "<name>Tap panel</name> determines properties of one delay tap.";
inline constexpr const char* kFeedback =
    "<name>Feedback</name> determines how much of the signal is returned to the input after the "
    "delay "
    "time.";
inline constexpr const char* kGain =
    "<name>Gain</name> defines amount of signal created by particular tap. It affects only volume "
    "of "
    "the delayed signal.";
inline constexpr const char* kPanorama = "<name>Panorama</name> determines tap panorama.";
inline constexpr const char* kDelay =
    "<name>Delay</name> determines how long it takes to pass the signal from the output back to "
    "the "
    "input, thus how long it takes to the sound to be played again.";
inline constexpr const char* kLeftOffset =
    "<name>Left offset</name> determines the predelay of left channel. When negative, the predelay "
    "is "
    "applied on right channel similarly. This effect can be useful for controlling stereo spread. "
    "It "
    "can also be used to make the delay \"slightly off-sync\". Note that this is actually applied "
    "on "
    "stereo signals only.";
inline constexpr const char* kRightOffset =
    "<name>Right offset</name> determines the predelay of right channel. When negative, the "
    "predelay "
    "is applied on left channel similarly. This effect can be useful for controlling stereo "
    "spread. "
    "It can also be used to make the delay \"slightly off-sync\". Note that this is actually "
    "applied "
    "on stereo signals only.";
inline constexpr const char* kMode =
    "<name>Mode</name> determines way the delay is working. <value>Default</value> mode makes the "
    "first echo dependent on the feedback. Conversely <value>classic</value> mode makes the first "
    "echo independent on the feedback setting. Finally <value>ping-pong</value> mode is similar to "
    "classic mode, but is switching between channel in stereo, so you can use it to get the "
    "typical "
    "left-right ping-pong echos with nonzero panorama.";
inline constexpr const char* kFreeze = "";
inline constexpr const char* kSyncPanel =
    "<name>Synchronization panel</name> contains parameters for to-host synchronization.";
inline constexpr const char* kSyncLength =
    "<name>Length</name> defines note length, therefore speed.";
inline constexpr const char* kSyncType =
    "<name>Type</name> defines note type, such as straight notes or triplets.";

}  // namespace MDelayHelpTexts
