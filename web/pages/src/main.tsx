// Starts the pages.
import { render } from 'preact';
import { watchAlarms } from './alarms';
import { App } from './App';
import { warnBeforeLeaving } from './editors';
import { watchSequence } from './sequence';
import { start } from './store';
import './styles/index.css';

start();
watchAlarms();
watchSequence();
warnBeforeLeaving();
render(<App />, document.body);
