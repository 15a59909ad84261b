// The gas flow as a drawing: lists for screen readers, with lines and symbols between their items.
import type { ComponentChildren } from 'preact';
import type { Status } from '../documents';
import { schematicOf, type Branch, type Part, type Reading } from '../schematic';
import { configuration } from '../store';
import { valueWithUnit } from '../units';

/** More ports than this cannot be told apart. */
const mostPorts = 12;

/** Place of a port, counted clockwise from the top. */
function portAt(number: number, count: number): { x: number; y: number } {
  const angle = (2 * Math.PI * (number - 1)) / count - Math.PI / 2;
  return { x: 20 + 13 * Math.cos(angle), y: 20 + 13 * Math.sin(angle) };
}

/** The valve, pointing to its stream if that is one of its ports. */
function Valve({ stream }: { stream: number }) {
  const { Stream_configured: isFitted, Stream_max: max = 0 } = configuration.value ?? {};
  const count = isFitted && max <= mostPorts ? Math.max(0, max) : 0;
  const ports = Array.from({ length: count }, (_, index) => portAt(index + 1, count));
  const open = ports[stream - 1];
  return (
    <>
      <circle cx="20" cy="20" r="18" />
      {ports.map(({ x, y }, index) => (
        <circle
          key={index}
          cx={x}
          cy={y}
          r="2"
          class={index === stream - 1 ? 'filled' : undefined}
        />
      ))}
      {open && <path class="strong" d={`M20 20L${open.x.toFixed(1)} ${open.y.toFixed(1)}`} />}
      <circle cx="20" cy="20" r="3" class="filled" />
    </>
  );
}

const symbols: Readonly<Record<Exclude<Part['icon'], 'valve'>, ComponentChildren>> = {
  line: <path d="M0 20H6L10 10L16 30L22 10L28 30L32 20H40M0 34H40" />,
  injector: <path d="M0 20H8M32 20H40M8 10H32V30H8ZM20 2V10M14 20H26M22 16L26 20L22 24" />,
  column: (
    <path d="M0 20H6M34 20H40M6 20C6 4 18 4 18 20S8 36 8 20S22 4 24 20S14 36 14 20S28 4 30 20S22 36 20 20S34 4 34 20" />
  ),
  detector: <path d="M0 20H6M34 20H40M20 6L34 20L20 34L6 20ZM13 20L18 20L20 14L22 26L24 20H28" />,
};

function Icon({ icon, stream }: { icon: Part['icon']; stream: number }) {
  return (
    <svg class="symbol" viewBox="0 0 40 40" aria-hidden="true">
      {icon === 'valve' ? <Valve stream={stream} /> : symbols[icon]}
    </svg>
  );
}

function ReadingText({ reading }: { reading: Reading }) {
  const { label, value, unit, state, level } = reading;
  return (
    <p class={`reading ${level}`}>
      {label && <span class="hidden">{label} </span>}
      <span class="number">{unit ? valueWithUnit(value, unit) : value}</span>
      {state && <small> {state}</small>}
    </p>
  );
}

function PartItem({ part, stream }: { part: Part; stream: number }) {
  const isOff = part.readings.some(({ level }) => level === 'off');
  return (
    <li class={isOff ? 'part off' : 'part'}>
      <Icon icon={part.icon} stream={stream} />
      <div>
        <p class="name">{part.name}</p>
        {part.readings.map((reading, index) => (
          <ReadingText key={index} reading={reading} />
        ))}
      </div>
    </li>
  );
}

function BranchItem({ branch, stream }: { branch: Branch; stream: number }) {
  return (
    <li class={branch.isDisabled ? 'branch disabled' : 'branch'}>
      <h3>
        {branch.title}
        {branch.note && (
          <>
            {' '}
            <span class="note text">{branch.note}</span>
          </>
        )}
      </h3>
      <ol class="parts">
        {branch.parts.map((part) => (
          <PartItem key={part.name} part={part} stream={stream} />
        ))}
      </ol>
    </li>
  );
}

export function Schematic({ status }: { status: Status }) {
  const { inlet, branches, remarks } = schematicOf(status, configuration.value);
  const stream = status.Curr_stream;
  return (
    <section class="card wide" aria-labelledby="schematic">
      <h2 id="schematic">Gas flow</h2>
      <div class="schematic">
        <ol class="parts inlet" aria-label="All channels">
          {inlet.map((part) => (
            <PartItem key={part.name} part={part} stream={stream} />
          ))}
        </ol>
        <ul class="branches" aria-label="Channels">
          {branches.map((branch) => (
            <BranchItem key={branch.title} branch={branch} stream={stream} />
          ))}
        </ul>
      </div>
      {remarks.map((remark) => (
        <p key={remark} class="dim">
          {remark}
        </p>
      ))}
    </section>
  );
}
