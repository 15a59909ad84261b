// Starting runs, switching the stream, loading a solution.
import { useEffect, useId, useState } from 'preact/hooks';
import { getReport } from '../api';
import { ActionButton } from '../components/ActionButton';
import { ExpectedEnd } from '../components/ExpectedEnd';
import { Now } from '../components/Now';
import { RunQuestion, type Question } from '../components/RunQuestion';
import type { Sequence, Status } from '../documents';
import { followStream } from '../follow';
import { formatInstant } from '../format';
import { lastSlot, lastStream } from '../limits';
import { command, configuration, describeFault, returns, status, lostSince, now } from '../store';

function streamsOf(current: Status): number[] {
  const { Stream_configured: isConfigured, Stream_max: max } = configuration.value ?? {};
  const streams = isConfigured
    ? Array.from({ length: Math.min(Math.max(max ?? 0, 0), lastStream) }, (_, index) => index + 1)
    : [];
  return streams.includes(current.Curr_stream) ? streams : [current.Curr_stream, ...streams];
}

function NumberSelect(props: {
  label: string;
  value: number;
  values: readonly number[];
  onChange: (value: number) => void;
}) {
  const id = useId();
  return (
    <>
      <label for={id}>{props.label}</label>{' '}
      <select
        id={id}
        value={props.value}
        onChange={(event) => props.onChange(Number(event.currentTarget.value))}
      >
        {props.values.map((value) => (
          <option key={value} value={value}>
            {value}
          </option>
        ))}
      </select>
    </>
  );
}

function switchStream(stream: number): void {
  const send = { method: 'PUT', path: 'stream', body: { stream } } as const;
  void command(`Stream ${stream}`, send, () => followStream(stream));
}

export function RunPage() {
  const [question, setQuestion] = useState<Question>();
  const [runStream, setRunStream] = useState<number>();
  const [valveStream, setValveStream] = useState<number>();
  const [slot, setSlot] = useState(0);
  const [sequenceFault, setSequenceFault] = useState('');
  // The fault dates from before the instrument came back.
  useEffect(() => setSequenceFault(''), [returns.value]);
  const current = status.value;
  if (!current) {
    return <p>Waiting for the first answer of the instrument.</p>;
  }
  const forRun = runStream ?? current.Curr_stream;
  const forValve = valveStream ?? current.Curr_stream;
  const streams = streamsOf(current);
  const hasSelector = configuration.value?.Stream_configured ?? false;

  const askAutomation = async (): Promise<void> => {
    const answer = await getReport<Sequence>('/api/sequence', 'Table_repeat');
    setSequenceFault(answer.ok ? '' : describeFault(answer.fault));
    if (answer.ok) {
      setQuestion({ kind: 'automation', sequence: answer.value });
    }
  };

  return (
    <>
      <section class="card wide live" aria-labelledby="now">
        <h2 id="now">
          {lostSince.value === undefined
            ? 'Now'
            : `Last values, from ${formatInstant(lostSince.value, now.value)}`}
        </h2>
        <Now status={current} />
        <dl class="facts inline">
          <ExpectedEnd />
        </dl>
      </section>
      <div class="cards small">
        <section class="card" aria-labelledby="start">
          <h2 id="start">Start a run</h2>
          <p>
            <NumberSelect
              label="On stream"
              value={forRun}
              values={streams}
              onChange={setRunStream}
            />
          </p>
          <div class="act">
            <ActionButton
              action="start-run"
              label="Start single run…"
              kind="primary"
              onClick={() => setQuestion({ kind: 'single', stream: forRun })}
            />
          </div>
          <div class="act">
            <ActionButton
              action="start-run"
              label="Start calibration…"
              onClick={() => setQuestion({ kind: 'calibration', stream: forRun })}
            />
          </div>
        </section>
        <section class="card" aria-labelledby="automation">
          <h2 id="automation">Start the automation</h2>
          <p>
            Runs the <a href="#/sequence">sequence</a> that the instrument has.
          </p>
          <div class="act">
            <ActionButton
              action="start-automation"
              label="Start automation…"
              kind="primary"
              onClick={() => void askAutomation()}
            />
          </div>
          <div role="alert">{sequenceFault && <p class="message bad">{sequenceFault}</p>}</div>
        </section>
        <section class="card" aria-labelledby="valve">
          <h2 id="valve">Stream valve</h2>
          <p>
            <NumberSelect
              label="Stream"
              value={forValve}
              values={streams}
              onChange={setValveStream}
            />
          </p>
          <div class="act">
            <ActionButton
              action="stream"
              label="Switch"
              reason={hasSelector ? '' : 'The instrument has no stream selector.'}
              onClick={() => switchStream(forValve)}
            />
          </div>
        </section>
        <section class="card" aria-labelledby="solution">
          <h2 id="solution">Solution</h2>
          <p>
            <NumberSelect
              label="Slot"
              value={slot}
              values={Array.from({ length: lastSlot + 1 }, (_, index) => index)}
              onChange={setSlot}
            />
          </p>
          <div class="act">
            <ActionButton
              action="solution"
              label="Load…"
              onClick={() => setQuestion({ kind: 'solution', slot })}
            />
          </div>
          <p class="dim">No report shows which solution is in use.</p>
        </section>
      </div>
      {question && <RunQuestion question={question} onDone={() => setQuestion(undefined)} />}
    </>
  );
}
