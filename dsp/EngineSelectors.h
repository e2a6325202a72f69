// What the engine's whole-number settings mean: the speaker layouts
// (Decoder::decodeMode) and the 5.x decoder types (Decoder::fiveDecoderType),
// and the level an ambience pair must pass before it is added. The parameter
// protocol, both plug-in editions, the editor and the plot use these very
// constants, so each number is written here alone.
#pragma once

namespace sorvane {

// Speaker layouts as decodeMode holds them.
constexpr int kMonoLayout = 1;  // held by the engine, selected by no parameter value
constexpr int kStereoLayout = 2;
constexpr int kTwoOneLayout = 3;
constexpr int kQuadLayout = 4;
constexpr int kFiveLayout = 5;
constexpr int kFiveOneLayout = 6;

// The 5.x decoder types: virtual microphones, then the two fixed matrices.
constexpr int kVirtualMicrophones = 0;
constexpr int kFixedMatrix1 = 1;
constexpr int kFixedMatrix2 = 2;

// The rear and height ambience pairs are added only while their level is
// above this, in dB; the plug-ins show "Off" at or below it.
constexpr double kAmbienceThreshold = -40.0;

}  // namespace sorvane
