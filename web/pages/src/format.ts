// Values as texts for the user.
import type { Real, SetpointAndActual } from './documents';

export const notAvailable = 'not available';

/** A value with a fixed number of decimals; `-` is put into words. */
export function formatReal(value: Real | undefined, decimals: number): string {
  return typeof value === 'number' ? value.toFixed(decimals).replace('-', '−') : notAvailable;
}

export interface Deviation {
  level: 'good' | 'off' | 'none';
  text: string;
}

/** How an actual value compares with its setpoint; within `tolerance` it is at setpoint. */
export function deviationOf(
  pair: SetpointAndActual,
  tolerance: number,
  decimals: number,
): Deviation {
  if (typeof pair.Setpoint !== 'number' || typeof pair.Actual !== 'number') {
    return { level: 'none', text: notAvailable };
  }
  const difference = pair.Actual - pair.Setpoint;
  if (Math.abs(difference) <= tolerance) {
    return { level: 'good', text: 'at setpoint' };
  }
  const side = difference > 0 ? 'above' : 'below';
  return { level: 'off', text: `${Math.abs(difference).toFixed(decimals)} ${side}` };
}

/** A span of time: `37 s`, `2 min 05 s`, `1 h 02 min`. */
export function formatSpan(seconds: number): string {
  const whole = Math.max(0, Math.floor(seconds));
  if (whole < 60) {
    return `${whole} s`;
  }
  if (whole < 3600) {
    return `${Math.floor(whole / 60)} min ${two(whole % 60)} s`;
  }
  return `${Math.floor(whole / 3600)} h ${two(Math.floor((whole % 3600) / 60))} min`;
}

const two = (part: number): string => String(part).padStart(2, '0');

const months = [
  'January',
  'February',
  'March',
  'April',
  'May',
  'June',
  'July',
  'August',
  'September',
  'October',
  'November',
  'December',
];

/** A time of day in the browser's time zone: `14:32:07`. */
export function formatTime(time: number): string {
  return `${formatMinute(time)}:${two(new Date(time).getSeconds())}`;
}

function formatMinute(time: number): string {
  const date = new Date(time);
  return `${two(date.getHours())}:${two(date.getMinutes())}`;
}

/** The date, such as ` on 5 March`; empty if it is today. */
function formatDay(time: number, present: number): string {
  const date = new Date(time);
  const today = new Date(present);
  if (date.toDateString() === today.toDateString()) {
    return '';
  }
  const year = date.getFullYear() === today.getFullYear() ? '' : ` ${date.getFullYear()}`;
  return ` on ${date.getDate()} ${months[date.getMonth()]}${year}`;
}

/** A time of day without seconds, with the date if that is not today's: `14:32 on 5 March`. */
export function formatMoment(time: number, present: number): string {
  return formatMinute(time) + formatDay(time, present);
}

/** The same with seconds: `14:32:07 on 5 March`. */
export function formatInstant(time: number, present: number): string {
  return formatTime(time) + formatDay(time, present);
}

/** The automation's position; its three numbers are 0 when it is not under way. */
export function formatPosition(line: number, replicate: number, table: number): string {
  return line === 0 && replicate === 0 && table === 0
    ? 'not under way'
    : `line ${line}, run ${replicate} of it, table pass ${table}`;
}
