// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MVSTEditor.h"

#include "core/MGuard.h"

#include <algorithm>
#include <limits>

namespace Vst2 {

namespace {

ERect sharedRectangle = {};

/// Editors that are still being built have a few pixels of frame and nothing inside.
std::int16_t Reported(int pixels) noexcept {
    constexpr int kSmallest = 5;
    if (pixels < kSmallest) return 0;
    return static_cast<std::int16_t>(
        std::min<int>(pixels, std::numeric_limits<std::int16_t>::max()));
}

MAudioPluginEditor::Key Translated(const VstKeyCode& key) noexcept {
    return {key.character, key.virt, key.modifier};
}

}  // namespace

bool MAudioPluginVSTAdapter::MEditor::getRect(ERect** rectangle) {
    *rectangle = nullptr;
    return Guard("MAudioPluginVSTAdapter::MEditor::getRect", false, [&] {
        if (editor_ == nullptr) editor_ = plugin_.CreateEditor();
        if (editor_ == nullptr) return false;
        sharedRectangle = {0, 0, Reported(editor_->Height()), Reported(editor_->Width())};
        *rectangle = &sharedRectangle;
        return true;
    });
}

bool MAudioPluginVSTAdapter::MEditor::open(void* parentWindow) {
    return Guard("MAudioPluginVSTAdapter::MEditor::open", false, [&] {
        if (editor_ == nullptr) editor_ = plugin_.CreateEditor();
        return editor_ != nullptr && editor_->Open(parentWindow);
    });
}

void MAudioPluginVSTAdapter::MEditor::close() {
    Guard("MAudioPluginVSTAdapter::MEditor::close", [&] {
        if (editor_ != nullptr) editor_->Close();
    });
}

void MAudioPluginVSTAdapter::MEditor::idle() {
    Guard("MAudioPluginVSTAdapter::MEditor::idle", [&] {
        if (editor_ != nullptr) editor_->Idle();
    });
}

bool MAudioPluginVSTAdapter::MEditor::onKeyDown(const VstKeyCode& key) {
    return Guard("MAudioPluginVSTAdapter::MEditor::onKeyDown", false,
                 [&] { return editor_ != nullptr && editor_->KeyDown(Translated(key)); });
}

bool MAudioPluginVSTAdapter::MEditor::onKeyUp(const VstKeyCode& key) {
    return Guard("MAudioPluginVSTAdapter::MEditor::onKeyUp", false,
                 [&] { return editor_ != nullptr && editor_->KeyUp(Translated(key)); });
}

}  // namespace Vst2
