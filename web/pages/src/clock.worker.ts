// Ticks every 4 s, whether its page is visible or not.
setInterval(() => postMessage('tick'), 4000);

export {};
