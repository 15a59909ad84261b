// Starts the pages.
import { render } from 'preact';
import { App } from './App';
import { warnBeforeLeaving } from './editors';
import { start } from './store';
import './styles/index.css';

start();
warnBeforeLeaving();
render(<App />, document.body);
