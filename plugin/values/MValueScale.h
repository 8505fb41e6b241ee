// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValue.h"

#include <memory>
#include <string>

/// Another scale with its positions bent: the position shown here is the root of the wrapped one,
/// so that the lower values take more of the way. Everything else is the wrapped scale's own.
/// Increments move the position shown here by a thousandth per step and at most by a tenth.
class MValueScalePower : public MValue {
public:
    /// Wraps `scale`, which must be one; `exponent` is 1 or more. [setup]
    explicit MValueScalePower(std::unique_ptr<MValue> scale, int exponent = 4);

    std::string ToString() const override { return scale_->ToString(); }
    bool FromString(const std::string& text) override { return scale_->FromString(text); }
    bool SetDefault() override { return scale_->SetDefault(); }
    bool Assign(const MValue& other) override;
    void Save(MXMLNode node) const override { scale_->Save(node); }
    bool Load(MXMLNode node) override { return scale_->Load(node); }
    std::string TypeName() const override { return "MValueScalePower"; }
    std::string GetDisplayText() const override { return scale_->GetDisplayText(); }
    std::string GetDisplayTextFrom01(double x) const override;
    bool Edit(const std::string& text) override { return scale_->Edit(text); }
    bool ParseDisplayText(const std::string& text) override {
        return scale_->ParseDisplayText(text);
    }
    void Validate() override { scale_->Validate(); }
    void IncrementPower(int power, bool up) override;
    void Increment(int count) override;
    double GetNormalised() const override;
    void SetNormalised(double x) override;

private:
    double Bent(double x) const;
    void Move(double distance);

    const std::unique_ptr<MValue> scale_;
    const int exponent_;
};

/// The same with squares: the lower quarter of the values takes half of the way.
class MValueScaleSqr : public MValueScalePower {
public:
    explicit MValueScaleSqr(std::unique_ptr<MValue> scale);

    std::string TypeName() const override { return "MValueScaleSqr"; }
};
