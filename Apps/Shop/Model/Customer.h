#pragma once

struct Customer {
  const char* firstName;
  const char* lastName;
  const char* email;
};

/// Who is signed in to the shop.
inline constexpr Customer ShopCustomer{"Ada", "Lovelace", "ada@example.com"};
