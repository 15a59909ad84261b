// The switch for this browser's warning sound.
import { isAudible, isSoundOn, switchSound } from '../sound';

export function SoundSwitch() {
  return (
    <div class="sound">
      <label>
        <input
          type="checkbox"
          checked={isSoundOn.value}
          onChange={(event) => void switchSound(event.currentTarget.checked)}
        />{' '}
        Sound in this browser on an alarm, an error, or no answer
      </label>
      {isSoundOn.value && !isAudible.value && (
        <span class="reason"> The browser is silent until somebody clicks in this page.</span>
      )}
    </div>
  );
}
