// Starts the pages.
import { render } from 'preact';
import { watchAlarms } from './alarms';
import { App } from './App';
import { keepUnsent, warnBeforeLeaving } from './editors';
import { watchSequence } from './sequence';
import { watchSound } from './sound';
import { start } from './store';
import { watchIcon } from './watch';
import './styles/index.css';

start();
watchAlarms();
watchSequence();
watchIcon();
watchSound();
keepUnsent();
warnBeforeLeaving();
render(<App />, document.body);
