// The instrument's configuration.
import { useState } from 'preact/hooks';
import type { Fault } from '../api';
import { useLoad } from '../comeback';
import { channelKeys } from '../documents';
import { configuration, describeFault, loadConfiguration } from '../store';

export function ConfigurationPage() {
  const [fault, setFault] = useState<Fault>();
  const load = async (): Promise<void> => setFault(await loadConfiguration());
  useLoad(() => void load(), !configuration.value);
  const current = configuration.value;
  return (
    <>
      <div role="alert">{fault && <p class="message bad">{describeFault(fault)}</p>}</div>
      <div class="toolbar">
        <button type="button" onClick={() => void load()}>
          Reload
        </button>
      </div>
      {current && (
        <>
          <section class="card wide" aria-labelledby="instrument">
            <h2 id="instrument">Instrument</h2>
            <dl class="facts">
              <dt>Name</dt>
              <dd class="text">{current.Inst_name || 'none'}</dd>
              <dt>Site</dt>
              <dd class="text">{current.Site_info || 'none'}</dd>
              <dt>Serial number</dt>
              <dd>{current.Inst_serial}</dd>
              <dt>Stream selector</dt>
              <dd>
                {current.Stream_configured
                  ? `streams up to ${current.Stream_max}`
                  : 'not configured'}
              </dd>
            </dl>
          </section>
          <section aria-labelledby="channels">
            <h2 id="channels">Channels</h2>
            <div class="scroll">
              <table>
                <thead>
                  <tr>
                    <th scope="col">Channel</th>
                    <th scope="col">Installed</th>
                    <th scope="col">Column</th>
                    <th scope="col">Carrier gas</th>
                    <th scope="col">Part number</th>
                    <th scope="col">Serial number</th>
                  </tr>
                </thead>
                <tbody>
                  {channelKeys.map((key, index) => {
                    const channel = current[key];
                    const { Installed, Disabled } = channel;
                    return (
                      <tr key={key} class={Installed ? undefined : 'dim'}>
                        <th scope="row">{index + 1}</th>
                        <td>{Installed ? (Disabled ? 'yes, disabled' : 'yes') : 'no'}</td>
                        {Installed ? (
                          <>
                            <td class="text">{channel.Description || 'not available'}</td>
                            <td>{channel.Gas}</td>
                            <td class="number">{channel.PN}</td>
                            <td class="number">{channel.Serial}</td>
                          </>
                        ) : (
                          <td colSpan={4} />
                        )}
                      </tr>
                    );
                  })}
                </tbody>
              </table>
            </div>
          </section>
        </>
      )}
    </>
  );
}
