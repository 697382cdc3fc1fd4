// A panel whose raw input a test makes, on a clock that it moves by hand.
//
// Input is written as text, one word a change:
//   d1@10,20 m1@... u1@... c1@...   finger 1 goes down, moves, goes up, is cancelled
//   dM@... and dP@...               the mouse's left button, the pen's tip
//   hM@...                          the mouse moves without a button
//   +8                              8 ms pass; changes between two of these are one frame
//   lost, unloaded, system, all     the pointers are lost; the panel is unloaded, ...
// What the panel raises is told in a line; movements of one kind are added up.
// Threads: one.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/fake/TestHost.h"
#include "platform/gestures/PanelInput.h"

namespace velko {

namespace Gestures = Platform::Gestures;
namespace Input = Windows::UI::Xaml::Input;
using Windows::Foundation::Point;
using Panel = Windows::UI::Xaml::Controls::SwapChainPanel;

class GestureFixture : public ::testing::Test {
protected:
    GestureFixture() {
        m_pPanel->Arrange({1000.0F, 800.0F});
        m_pPanel->RaiseLoaded();
        m_pInput = Gestures::PanelInput::Create(Platform::Environment(), m_pPanel);
    }

    static std::string At(Point pt) {
        return std::to_string(std::lround(pt.X)) + "," + std::to_string(std::lround(pt.Y));
    }

    // From now on `Story` is written.
    void Tell() {
        m_pPanel->ManipulationStarted.add(
            [this](auto& args) { Say("start " + At(args.Position)); });
        m_pPanel->ManipulationDelta.add([this](auto& args) { AddUp(args); });
        m_pPanel->ManipulationCompleted.add(
            [this](auto& args) { Say(args.IsInertial ? "end of fling" : "end"); });
        m_pPanel->Tapped.add([this](auto& args) { Say("tap " + At(args.Position)); });
        m_pPanel->Holding.add([this](auto& args) { Say("hold " + At(args.Position)); });
        m_pPanel->PointerCaptureLost.add([this](auto&) { Say("lost"); });
        m_pPanel->PointerWheelChanged.add([this](auto& args) {
            Say((args.IsHorizontalMouseWheel ? "across " : "wheel ") +
                std::to_string(args.MouseWheelDelta));
        });
    }

    // What was told since the last call.
    std::string Story() {
        FlushMovement();
        return std::exchange(m_strStory, {});
    }

    void Pass(std::chrono::milliseconds span) {
        m_time += span;
        m_host.Clock().Advance(span);
    }

    void Send(std::vector<Gestures::PointerRecord> records) {
        if (m_pInput) {
            m_pInput->Apply(Gestures::PointerFrame{m_time, std::move(records)});
        }
    }

    void Play(const std::string& strScript) {
        std::istringstream words(strScript);
        std::vector<Gestures::PointerRecord> frame;
        for (std::string strWord; words >> strWord;) {
            if (strWord.find('@') != std::string::npos) {
                frame.push_back(Record(strWord));
                continue;
            }
            Send(std::exchange(frame, {}));
            PlayWord(strWord);
        }
        Send(std::move(frame));
    }

    void Scroll(Gestures::ScrollPhase ePhase, Point ptPixels, bool bControl = false) {
        Gestures::ScrollRecord record;
        record.time = m_time;
        record.ePhase = ePhase;
        record.ptAt = {300.0F, 200.0F};
        record.ptPixels = ptPixels;
        record.bControl = bControl;
        m_pInput->Apply(record);
    }

    void Pinch(Gestures::PinchPhase ePhase, float fFactor = 1.0F) {
        m_pInput->Apply(Gestures::PinchRecord{ePhase, {300.0F, 200.0F}, fFactor});
    }

    Platform::Fake::TestHost m_host;
    std::shared_ptr<Panel> m_pPanel = std::make_shared<Panel>();
    std::shared_ptr<Gestures::PanelInput> m_pInput;
    std::chrono::milliseconds m_time{5000};

private:
    static Gestures::PointerRecord Record(const std::string& strWord) {
        Gestures::PointerRecord record;
        char cChange = 0;
        char cPointer = 0;
        if (std::sscanf(strWord.c_str(), "%c%c@%f,%f", &cChange, &cPointer, &record.ptAt.X,
                        &record.ptAt.Y) != 4) {
            throw std::logic_error("no word of the script: " + strWord);
        }
        using Change = Gestures::PointerChange;
        record.eChange = cChange == 'd'   ? Change::Pressed
                         : cChange == 'u' ? Change::Released
                         : cChange == 'c' ? Change::Canceled
                                          : Change::Moved;
        record.bContact = cChange != 'h';
        record.nId = static_cast<std::uint32_t>(cPointer);
        record.eDevice = cPointer == 'M'   ? Gestures::Device::Mouse
                         : cPointer == 'P' ? Gestures::Device::Pen
                                           : Gestures::Device::Touch;
        return record;
    }

    void PlayWord(const std::string& strWord) {
        if (strWord[0] == '+') {
            Pass(std::chrono::milliseconds(std::stoi(strWord.substr(1))));
        } else if (strWord == "lost") {
            m_pInput->LosePointers(Gestures::PanelInput::Loss::Capture);
        } else if (strWord == "unloaded") {
            m_pPanel->RaiseUnloaded();
        } else if (strWord == "system" || strWord == "all") {
            m_pPanel->ManipulationMode =
                strWord == "all" ? Input::ManipulationMode::All : Input::ManipulationMode::System;
        } else {
            throw std::logic_error("no word of the script: " + strWord);
        }
    }

    void AddUp(const Input::ManipulationDeltaRoutedEventArgs& args) {
        const char* szKind = args.IsInertial                 ? "fling"
                             : args.Cumulative.Scale != 1.0F ? "pinch"
                                                             : "pan";
        if (szKind != m_strKind) {
            FlushMovement();
            m_strKind = szKind;
        }
        m_ptSum.X += args.Delta.Translation.X;
        m_ptSum.Y += args.Delta.Translation.Y;
        m_fProduct *= args.Delta.Scale;
    }

    void FlushMovement() {
        const Point ptSum = std::exchange(m_ptSum, {});
        const float fProduct = std::exchange(m_fProduct, 1.0F);
        const std::string strKind = std::exchange(m_strKind, {});
        if (strKind == "pinch") {
            Append("pinch x" + std::to_string(std::lround(fProduct * 100.0F)) + "%");
        } else if (!strKind.empty()) {
            Append(strKind + " " + At(ptSum));
        }
    }

    void Say(const std::string& strWhat) {
        FlushMovement();
        Append(strWhat);
    }
    void Append(const std::string& strWhat) {
        m_strStory += (m_strStory.empty() ? "" : "; ") + strWhat;
    }

    std::string m_strStory;
    std::string m_strKind; // of the movement that is being added up
    Point m_ptSum;
    float m_fProduct = 1.0F;
};

}
