// @vitest-environment happy-dom
import { afterEach, expect, it } from 'vitest';
import { configuration } from '../src/store';
import { isUnitMissing, nameWithUnit, valueWithUnit } from '../src/units';
import { clear, exampleConfiguration } from './world';

afterEach(clear);

it('assumes no unit', () => {
  for (const known of [undefined, exampleConfiguration, { ...exampleConfiguration, units: {} }]) {
    configuration.value = known;
    expect(nameWithUnit('Pressure', 'pressure')).toBe('Pressure');
    expect(valueWithUnit('180.1', 'pressure')).toBe('180.1');
    expect(isUnitMissing(['pressure'])).toBe(true);
    expect(isUnitMissing([])).toBe(false);
  }
});

it('uses the units that the owner has named', () => {
  configuration.value = { ...exampleConfiguration, units: { pressure: 'kPa' } };
  expect(nameWithUnit('Pressure', 'pressure')).toBe('Pressure, kPa');
  expect(valueWithUnit('180.1', 'pressure')).toBe('180.1\u00a0kPa');
  expect(valueWithUnit('not available', 'pressure')).toBe('not available');
  expect(nameWithUnit('Temperature', 'temperature')).toBe('Temperature');
  expect(isUnitMissing(['pressure'])).toBe(false);
  expect(isUnitMissing(['pressure', 'temperature'])).toBe(true);
});
