// Where each of the twenty parameters that shape the sound lives in the
// engine, in the order of the parameter protocol: a continuous one in a
// double field, a choice or a frequency in an int field. The processor
// writes the engine through this one table.
#pragma once

#include "Decoder.h"

struct EngineField {
    double Decoder::*real;   // null for a choice or a frequency
    int Decoder::*selector;  // null for a continuous setting
};

inline constexpr EngineField kEngineFields[] = {
    {&Decoder::rotateAngle, nullptr},     {&Decoder::tiltAngle, nullptr},          {&Decoder::tumbleAngle, nullptr},
    {&Decoder::zoomAmount, nullptr},      {nullptr, &Decoder::zoomMethod},         {nullptr, &Decoder::frontMode},
    {&Decoder::frontWidth, nullptr},      {&Decoder::frontPattern, nullptr},       {&Decoder::rearVerbGain, nullptr},
    {&Decoder::hiVerbGain, nullptr},      {&Decoder::centrePattern, nullptr},      {&Decoder::centreGain, nullptr},
    {&Decoder::subGain, nullptr},         {nullptr, &Decoder::crossoverFrequency}, {nullptr, &Decoder::surroundMode},
    {&Decoder::surroundPattern, nullptr}, {&Decoder::surroundWidth, nullptr},      {&Decoder::surroundGain, nullptr},
    {nullptr, &Decoder::decodeMode},      {nullptr, &Decoder::channelOrder},
};
