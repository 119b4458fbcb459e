// The Z80's templates: the clocks of an instruction after its third, one step a clock.
//
// An access is made on the last of its three clocks; the bus is sampled on the first. An
// instruction has three clocks more than its template has steps, and four more for each prefix.
// Clock counts are those of the Zilog Z80 CPU User Manual but for the interrupts
// (docs/HARDWARE.md).
#pragma once

#include "sega8/z80_private.h"

namespace z80_templates {

using enum Z80Step;

// One line for each access.
// clang-format off
inline constexpr Z80Template kFour{kSampleAndEnd};
inline constexpr Z80Template kSix{kIdle, kIdle, kSampleAndEnd};
inline constexpr Z80Template kReturnNotTaken{kIdle, kSampleAndEnd};
inline constexpr Z80Template kLoadHigh{kSample, kIdle, kOperandToHigh, kEnd};
inline constexpr Z80Template kLoadLow{kSample, kIdle, kOperandToLow, kEnd};
inline constexpr Z80Template kHighFromMemory{kSample, kIdle, kMemoryToHigh, kEnd};
inline constexpr Z80Template kLowFromMemory{kSample, kIdle, kMemoryToLow, kEnd};
inline constexpr Z80Template kStoreHigh{kSample, kIdle, kHighToMemory, kEnd};
inline constexpr Z80Template kStoreLow{kSample, kIdle, kLowToMemory, kEnd};
inline constexpr Z80Template kStoreOperand{
    kSample, kIdle, kOperandToT,
    kSampleAgain, kIdle, kTToMemory, kEnd};
inline constexpr Z80Template kLoadWord{
    kSample, kIdle, kOperandToLow,
    kSampleAgain, kIdle, kOperandToHigh, kEnd};
inline constexpr Z80Template kAddWords{
    kSample, kIdle, kIdle, kIdle,
    kSampleAgain, kIdle, kIdle, kEnd};
inline constexpr Z80Template kLoadADirect{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kOperandToWzHigh,
    kSampleAgain, kIdle, kMemoryToHigh, kEnd};
inline constexpr Z80Template kStoreADirect{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kOperandToWzHigh,
    kSampleAgain, kIdle, kHighToMemory, kEnd};
inline constexpr Z80Template kLoadWordDirect{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kOperandToWzHigh,
    kSampleAgain, kIdle, kMemoryToLowFirst,
    kSampleAgain, kIdle, kNextToHigh, kEnd};
inline constexpr Z80Template kStoreWordDirect{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kOperandToWzHigh,
    kSampleAgain, kIdle, kLowToMemoryFirst,
    kSampleAgain, kIdle, kHighToNext, kEnd};
inline constexpr Z80Template kJump{
    kSample, kIdle, kMemoryToLowFirst,
    kSampleAgain, kIdle, kNextToHigh, kEnd};
inline constexpr Z80Template kJumpNotTaken{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kOperandToWzHigh, kEnd};
inline constexpr Z80Template kRelative{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kIdle, kIdle, kIdle, kJumpRelative};
inline constexpr Z80Template kRelativeNotTaken{kSample, kIdle, kOperandToWzLow, kEnd};
inline constexpr Z80Template kLoop{
    kIdle, kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kIdle, kIdle, kIdle, kJumpRelative};
inline constexpr Z80Template kLoopNotTaken{
    kIdle, kSample, kIdle, kOperandToWzLow, kEnd};
inline constexpr Z80Template kCall{
    kSample, kIdle, kPushHigh,
    kSampleAgain, kIdle, kPushLow, kIdle,
    kSampleAgain, kIdle, kMemoryToLowFirst,
    kSampleAgain, kIdle, kNextToHigh, kEnd};
inline constexpr Z80Template kCallNotTaken{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kOperandToWzLow, kEnd};
inline constexpr Z80Template kPop{
    kSample, kIdle, kPopLow,
    kSampleAgain, kIdle, kPopHigh, kEnd};
inline constexpr Z80Template kReturnTaken{
    kIdle, kSample, kIdle, kPopLow,
    kSampleAgain, kIdle, kPopHigh, kEnd};
inline constexpr Z80Template kPush{
    kIdle, kSample, kIdle, kPushWzHigh,
    kSampleAgain, kIdle, kPushWzLow, kEnd};
inline constexpr Z80Template kExchangeStack{
    kSample, kIdle, kMemoryToLowFirst,
    kSampleAgain, kIdle, kIdle, kTToMemoryFirst,
    kSampleAgain, kIdle, kNextToHigh,
    kSampleAgain, kIdle, kIdle, kIdle, kTempHighToNext, kEnd};
inline constexpr Z80Template kInput{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kIdle, kPortToHigh, kEnd};
inline constexpr Z80Template kOutput{
    kSample, kIdle, kOperandToWzLow,
    kSampleAgain, kIdle, kIdle, kHighToPort, kEnd};
inline constexpr Z80Template kIndexedBits{
    kSample, kIdle, kOperandToT, kIdle, kIdle,
    kSampleAgain, kIdle, kIndexedOpcode, kDecodeIndexed};
inline constexpr Z80Template kIndexedStoreOperand{
    kSample, kIdle, kDisplacement,
    kSampleAgain, kIdle, kOperandToT, kIdle, kIdle,
    kSampleAgain, kIdle, kTToMemory, kEnd};
inline constexpr Z80Template kNmiTemplate{
    kIdle, kIdle, kIdle, kIdle, kIdle, kSample, kIdle, kPushWzHigh,
    kSampleAgain, kIdle, kPushWzLow, kEnd};
inline constexpr Z80Template kMode2Template{
    kIdle, kIdle, kIdle, kIdle, kSample, kIdle, kPushHigh,
    kSampleAgain, kIdle, kPushLow, kIdle,
    kSampleAgain, kIdle, kMemoryToLowFirst,
    kSampleAgain, kIdle, kNextToHigh, kEnd};
inline constexpr Z80Template kFakeOpcode{kIdle, kIdle, kIdle, kDecode};
// clang-format on

constexpr Z80Template AluOperand(Z80Step step) {
    return {kSample, kIdle, kOperandToWzLow, step};
}

constexpr Z80Template AluMemory(Z80Step step) {
    return {kSample, kIdle, kMemoryToWzLow, step};
}

constexpr Z80Template ChangeMemory(Z80Step step) {
    return {kSample, kIdle, kMemoryToT, step, kSampleAgain, kIdle, kTToMemory, kEnd};
}

// The indexed form of a template on (HL): first the read of the displacement, then the plain form.
// The plain form's first two clocks, a sampling point and an idle clock, stay right before its
// access.
constexpr Z80Template WithDisplacement(const Z80Template& plain) {
    constexpr size_t kAhead = 8;
    Z80TemplateSteps indexed{kSample, kIdle, kDisplacement, kSampleAgain, kIdle,
                             kIdle,   kIdle, kIdle,         kSampleAgain};
    for (size_t i = 1; i + kAhead < indexed.size(); ++i) {
        indexed[i + kAhead] = plain.steps[i];
    }
    return Z80Template(indexed);
}

// After an ED prefix.
inline constexpr Z80Template kNine{kIdle, kSampleAndEnd};
inline constexpr Z80Template kInputHigh{kSample, kIdle, kPortToHighFlags, kIdle, kEnd};
inline constexpr Z80Template kInputLow{kSample, kIdle, kPortToLowFlags, kIdle, kEnd};
inline constexpr Z80Template kInputFlags{kSample, kIdle, kPortToTFlags, kIdle, kEnd};
inline constexpr Z80Template kOutputT{kSample, kIdle, kTToPort, kIdle, kEnd};

constexpr Z80Template RotateDigit(Z80Step step) {
    return {kSample, kIdle,        kMemoryToT, kSampleAgain, kIdle, step,
            kIdle,   kSampleAgain, kIdle,      kTToMemory,   kEnd};
}

constexpr Z80Template MoveBlock(Z80Step step, Z80Step last) {
    return {kSample, kIdle, kMemoryToT, step, kIdle, kTToMemory, kSampleAgain, kIdle, last};
}

constexpr Z80Template CompareBlock(Z80Step step, Z80Step last) {
    return {kSample, kIdle, kMemoryToT, kSampleAgain, kIdle, step, kIdle, kIdle, last};
}

constexpr Z80Template InputBlock(Z80Step step, Z80Step last) {
    return {kIdle, kSample, kIdle, kPortToT, kSampleAgain, kIdle, step, kTToMemory, last};
}

constexpr Z80Template OutputBlock(Z80Step step, Z80Step last) {
    return {kIdle, kSample, kIdle, kMemoryToT, kSampleAgain, kIdle, step, kTToPort, last};
}

// After a CB prefix, on (HL); after the last byte of DD CB and FD CB.
inline constexpr Z80Template kTestMemory{kSample, kIdle, kMemoryToT, kBit, kEnd};
inline constexpr Z80Template kTestIndexed{kIdle, kMemoryToT, kBitIndexed, kEnd};

constexpr Z80Template ChangeIndexed(Z80Step step) {
    return {kIdle, kMemoryToT, step, kSampleAgain, kIdle, kTToMemory, kEnd};
}

} // namespace z80_templates
