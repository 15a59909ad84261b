// Texts of the numbers that define an alarm.
#pragma once

/// Text of a sample type, -2 to 5; "None" for any other.
const char* sampleTypeText(int aType);

/// Text of an alarm group, 0 to 12; "Unknown" for any other.
const char* alarmGroupText(int aGroup);

/// Whether the group's parameters are components, which the instrument names.
constexpr bool isComponentGroup(int aGroup) {
  return aGroup == 1 || aGroup == 2;
}

/// Text of parameter `aId` of a group other than the component groups; "0. None" for an unknown
/// group, null for an id that group 7 does not have.
const char* alarmParameterText(int aGroup, int aId);
